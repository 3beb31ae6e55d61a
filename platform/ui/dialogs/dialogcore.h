// What the dialog manager's files and the message box share.
#pragma once

#include "platform/ui/core/windowcore.h"

namespace ui {

inline const WCHAR* const kDialogClass = u"Dialog";
void RegisterDialogClass(); // at the start of the window system

// What a window of the dialog class is given to be one.
std::shared_ptr<DialogData> NewDialogData(DLGPROC procedure, bool modal);
// Shows a finished dialog and runs it until EndDialog, with the owner's top-level window disabled; destroys
// it and returns EndDialog's result, 0 when it was destroyed before.
LONG_PTR RunUntilEnded(HWND dialog, HWND owner);
// Remembers the rectangles that the template gave to the controls.
void RememberLayout(HWND dialog);
// Gives a full-screen dialog that part of its frame, and its controls their places in it. What does not fit
// is scrolled.
void LayOutDialog(HWND dialog, const QRect& client);
void ScrollIntoView(HWND control);
void ScrollByWheel(HWND dialog, int delta);
// False when all of it shows.
bool ScrollByPage(HWND dialog, bool up);
// The child that Tab goes to from `from` (null: before the first one); null when there is none.
HWND NextTabStop(HWND dialog, HWND from, bool backwards);
// Focus as Tab gives it: an edit box's text is selected.
void FocusByKey(HWND control);
// The push button that Enter would press looks like it.
void ShowDefaultButton(HWND dialog);

} // namespace ui
