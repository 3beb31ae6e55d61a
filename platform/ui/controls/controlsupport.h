// What the built-in controls share: messages that stay inside the platform, text copying, the look.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include "platform/controls.h"
#include "platform/ui/windowobject.h"

// Sent by SetWindowLongPtrW(GWL_STYLE) after the style has changed.
constexpr UINT WM_STYLECHANGED = 0x007D;

// What WM_GETDLGCODE answers.
constexpr LRESULT DLGC_WANTARROWS = 0x0001;
constexpr LRESULT DLGC_WANTALLKEYS = 0x0004;
constexpr LRESULT DLGC_HASSETSEL = 0x0008;
constexpr LRESULT DLGC_DEFPUSHBUTTON = 0x0010;
constexpr LRESULT DLGC_UNDEFPUSHBUTTON = 0x0020;
constexpr LRESULT DLGC_RADIOBUTTON = 0x0040;
constexpr LRESULT DLGC_WANTCHARS = 0x0080;
constexpr LRESULT DLGC_STATIC = 0x0100;
constexpr LRESULT DLGC_BUTTON = 0x2000;

// The widget behind a window of a built-in class; null when it is gone or of another class.
template <typename Widget>
Widget* WidgetOf(HWND window) {
    WindowObject* object = LiveWindow(window);
    return object ? dynamic_cast<Widget*>(object->widget.data()) : nullptr;
}

// Text as it is, lone surrogates and byte order marks included: the host's own conversions would mend it.
// Null: empty.
QString TextOf(const WCHAR* text);
// The answer of WM_GETTEXT and its relatives: what fits with its terminator; returns characters copied.
int CopyText(const QString& text, WCHAR* buffer, int capacity);
// "&Copy && paste" reads "Copy & paste".
QString WithoutMnemonic(const QString& text);
// Names the widget for assistive programs after the label before it.
void NameAfterLabel(const WindowObject& window, QWidget* widget);
// Events of this widget and of everything below it go straight to it and never become messages.
void TakeOwnInput(QWidget* widget);

// ---- the look ----
namespace look {
inline const QColor kSelection(0x2f, 0x6f, 0xb5);
inline const QColor kSelectionText(Qt::white);
inline const QColor kIdleSelection(0xd3, 0xe0, 0xee); // selected while the focus is elsewhere
inline const QColor kAlternateRow(0xf5, 0xf8, 0xfc);
inline const QColor kLine(0xc3, 0xcb, 0xd5);
inline const QColor kHeader(0xe9, 0xee, 0xf4);
inline const QColor kHeaderPressed(0xd5, 0xde, 0xe9);
inline const QColor kTrough(0xe6, 0xea, 0xef);
} // namespace look
