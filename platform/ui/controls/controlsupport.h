// What the built-in controls share: what they answer the dialog manager, their labels, their own input.
#pragma once

#include <QFontMetrics>
#include <QString>
#include <QWidget>

#include "platform/controls.h"
#include "platform/ui/core/windowobject.h"
#include "platform/ui/input/windowprocedures.h"

namespace ui {

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

// "&Copy && paste" reads "Copy & paste".
QString WithoutMnemonic(const QString& text);
// Names the widget for assistive programs after the label, frame or check box directly before it. A label
// stays its companion, whatever it reads later. Returns the name, empty when nothing of the kind is there.
QString NameAfterLabel(const WindowObject& window, QWidget* widget);
// Events of this widget and of everything below it go straight to it and never become messages.
void TakeOwnInput(QWidget* widget);

// What a control can do with: the least width, and the height that its text takes in a width (0 for any).
int LeastWidth(const WindowObject& control);
int HeightAt(const WindowObject& control, int width);
// The text with places to break in the words that are wider than that; they show nothing.
QString BreakableIn(const QFontMetrics& metrics, const QString& text, int width);
// The text of a check box or radio button, broken into the lines that such a width asks for.
QString BrokenToFit(const QWidget* button, const QString& text, int width);

// The edit of a row's label that is going on, if any, ends with its new text, as a tap beside it makes it.
// For what a user chooses without moving the focus: menus, the buttons of the bars.
void EndLabelEdit();

// ---- the classes, for the start of the window system ----
void RegisterButtonClass();
void RegisterStaticClass();
void RegisterEditClass();
void RegisterListViewClass();
void RegisterProgressClass();
void RegisterComboBoxClass();
void RegisterDatePickerClass();

} // namespace ui
