// What the built-in controls share: what they answer the dialog manager, their labels, their own input.
#pragma once

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
// Names the widget for assistive programs after the label before it.
void NameAfterLabel(const WindowObject& window, QWidget* widget);
// Events of this widget and of everything below it go straight to it and never become messages.
void TakeOwnInput(QWidget* widget);

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
