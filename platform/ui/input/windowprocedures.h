// What windows do by default, and how controls speak to their parents.
#pragma once

#include "platform/ui/core/windowobject.h"

namespace ui {

// The end of every built-in control's procedure: hands the host event behind the message to the widget that
// it was meant for (making one for messages that the program posted itself), and answers what all controls
// share: WM_SETFONT, WM_GETFONT, WM_ENABLE, WM_SETFOCUS, WM_SETTEXT, WM_GETTEXT, WM_GETTEXTLENGTH on `text`,
// WM_SETREDRAW.
LRESULT DefaultControlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// WM_NOTIFY to the parent; fills in the NMHDR's window and id. WM_COMMAND to the parent with a notification
// code.
LRESULT NotifyParent(HWND control, NMHDR* header, UINT code);
void CommandToParent(HWND control, UINT notification);

} // namespace ui
