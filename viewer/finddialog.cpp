#include "viewer/finddialog.h"

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "resources/resource.h"

namespace {

void InitFind(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    const FindOptions& options = *DialogState<FindOptions>(dialog);
    SendDlgItemMessageW(dialog, IDC_FIND_TEXT, EM_SETLIMITTEXT, kFindTextCapacity - 1, 0);
    SetDlgItemTextW(dialog, IDC_FIND_TEXT, options.text);
    CheckDlgButton(dialog, IDC_FIND_MATCH_CASE, options.matchCase != 0);
    CheckDlgButton(dialog, IDC_FIND_NUMERIC, options.searchNumProp != 0);
}

void AcceptFind(HWND dialog) {
    FindOptions& options = *DialogState<FindOptions>(dialog);
    GetDlgItemTextW(dialog, IDC_FIND_TEXT, options.text, kFindTextCapacity);
    options.matchCase = IsDlgButtonChecked(dialog, IDC_FIND_MATCH_CASE) == BST_CHECKED;
    options.searchNumProp = IsDlgButtonChecked(dialog, IDC_FIND_NUMERIC) == BST_CHECKED;
    EndDialog(dialog, IDOK);
}

LONG_PTR FindProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#findprop"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitFind(dialog);
        return TRUE;
    case WM_COMMAND:
        HandleOkCancel(dialog, LOWORD(wParam), AcceptFind);
        return TRUE;
    }
    return FALSE;
}

} // namespace

bool ShowFindDialog(HWND owner, FindOptions* options) {
    return RunDialog(IDD_FIND, owner, FindProcedure, reinterpret_cast<LPARAM>(options)) == IDOK;
}
