// What makes every dialog look alike: full screen, a painted header, bold buttons, a help button in the
// corner.
#pragma once

#include "platform/controls.h"
#include "platform/dialog.h"

// Called from WM_INITDIALOG.
void InitDialogFrame(HWND dialog, bool doneButton, bool bitmapButton);
// Called from WM_PAINT: paints the text of control 1032 as the header. False when there is none to paint.
bool PaintDialogFrame(HWND dialog);
// Called from WM_DRAWITEM: draws the bitmap button; false when the id is another's.
bool DrawDialogFrameItem(UINT id, const DRAWITEMSTRUCT* item);

// The messages that all dialogs answer alike: painting, the bitmap button and its command, and WM_HELP, which
// opens the help at `helpAnchor` (null: no help). True when the message was handled.
bool HandleFrameMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, const WCHAR* helpAnchor);
