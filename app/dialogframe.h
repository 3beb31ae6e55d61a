// What makes every dialog look alike: full screen, a painted header, bold buttons, a help button in the
// corner.
#pragma once

#include "platform/controls.h"
#include "platform/dialog.h"

// The buttons of a frame.
constexpr UINT kNoButtons = 0;
constexpr UINT kDoneButton = 1; // the OK in the title bar
constexpr UINT kHelpButton = 2; // the bitmap button in the header

// Called from WM_INITDIALOG.
void InitDialogFrame(HWND dialog, UINT buttons);
// The header, in place of the template's.
void SetFrameTitle(HWND dialog, const WCHAR* title);

// The messages that all dialogs answer alike: painting, with the text of IDC_FRAME_TITLE as the header, the
// help button and its command, and WM_HELP, which opens the help at `helpAnchor` (null: no help). True when
// the message was handled.
bool HandleFrameMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, const WCHAR* helpAnchor);

// OK calls `accept`, which ends the dialog unless something is refused; Cancel ends it. Other commands do
// nothing.
void HandleOkCancel(HWND dialog, UINT command, void (*accept)(HWND dialog));

// To an edit box whose text was refused: the focus, with all of it selected.
void ReturnToField(HWND dialog, int id);
