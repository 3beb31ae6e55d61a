// Dialogs from templates, and the calls that reach their controls by id.
#pragma once

#include "platform/window.h"

struct DLGTEMPLATE; // a template resource's bytes, as LockResource gives them

// The instance carries the resources; `param` arrives in WM_INITDIALOG's lParam. The dialog's text, font and
// controls come from the template; its procedure returns TRUE for what it handled, and WM_INITDIALOG
// returning TRUE gives the focus to the first tab stop.

// Runs the dialog until EndDialog, with the owner disabled; returns EndDialog's result, -1 when it cannot be
// made, 0 when it or its owner was destroyed before. A quit message that comes meanwhile waits until it has
// ended. Where nobody can be asked it ends at once as IDCANCEL, with a line on standard error.
LONG_PTR DialogBoxIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND owner,
                                 DLGPROC procedure, LPARAM param);
// Modeless; null when it cannot be made. Destroyed by DestroyWindow.
HWND CreateDialogIndirectParamW(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND owner,
                                DLGPROC procedure, LPARAM param);
// An open dialog takes the places that its controls have in another template with the same controls in the
// same order, as after the screen has been turned. False, and nothing changes, when the controls are not the
// same.
BOOL RelayoutDialog(HWND dialog, const DLGTEMPLATE* dialogTemplate);
BOOL EndDialog(HWND dialog, LONG_PTR result);
// Handles Tab, arrows in radio groups, Enter (default button), Escape (IDCANCEL) and mnemonics; dispatches
// what is for the dialog or its children. False: not for this dialog.
BOOL IsDialogMessageW(HWND dialog, MSG* message);

// The dialog font's average character width (low word) and height (high word), pixels.
LONG GetDialogBaseUnits();

HWND GetDlgItem(HWND dialog, int id);
int GetDlgCtrlID(HWND control);
BOOL SetDlgItemTextW(HWND dialog, int id, const WCHAR* text);
UINT GetDlgItemTextW(HWND dialog, int id, WCHAR* text, int capacity);
LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
BOOL CheckDlgButton(HWND dialog, int id, UINT state);
UINT IsDlgButtonChecked(HWND dialog, int id);
BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned);
// The control's text as a decimal number, blanks before it passed over; 0, with *translated false, when it is
// none or too large. `translated` may be null. A signed result is returned as its bits.
UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned);
BOOL CheckRadioButton(HWND dialog, int first, int last, int checked);

// A dialog's state object.
template <typename T>
T* DialogState(HWND dialog) {
    return reinterpret_cast<T*>(GetWindowLongPtrW(dialog, GWLP_USERDATA));
}
inline void SetDialogState(HWND dialog, LPARAM state) {
    SetWindowLongPtrW(dialog, GWLP_USERDATA, state);
}
