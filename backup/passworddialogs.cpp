#include "backup/passworddialogs.h"

#include "app/dialogframe.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

const WCHAR* const kHelpAnchor = u"tarnwickscope.htm#passwd";
constexpr int kMinPasswordLength = 4;

void LimitPassword(HWND dialog, int id) {
    SendDlgItemMessageW(dialog, id, EM_SETLIMITTEXT, kPasswordCapacity - 1, 0);
}

void SelectText(HWND dialog, int id) {
    SetFocus(GetDlgItem(dialog, id));
    SendDlgItemMessageW(dialog, id, EM_SETSEL, 0, -1);
}

void AcceptNewPassword(HWND dialog) {
    PasswordBlock typed = {};
    PasswordBlock confirmation = {};
    GetDlgItemTextW(dialog, IDC_PROTECT_PASSWORD, typed.text, kPasswordCapacity);
    GetDlgItemTextW(dialog, IDC_PROTECT_CONFIRMATION, confirmation.text, kPasswordCapacity);
    if (!typed.text[0] && !confirmation.text[0]) {
        EndDialog(dialog, IDCANCEL);
        return;
    }
    if (lstrlenW(typed.text) < kMinPasswordLength) {
        MessageFromString(dialog, IDS_PASSWORD_TOO_SHORT, kFailureBox);
    } else if (lstrcmpW(typed.text, confirmation.text) != 0) {
        MessageFromString(dialog, IDS_PASSWORD_NOT_CONFIRMED, kStopBox);
    } else {
        *DialogState<PasswordBlock>(dialog) = typed;
        EndDialog(dialog, IDOK);
        return;
    }
    SelectText(dialog, IDC_PROTECT_PASSWORD);
}

LONG_PTR ProtectProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, kHelpAnchor))
        return TRUE;
    if (message == WM_INITDIALOG) {
        SetDialogState(dialog, lParam);
        InitDialogFrame(dialog, true, true);
        LimitPassword(dialog, IDC_PROTECT_PASSWORD);
        LimitPassword(dialog, IDC_PROTECT_CONFIRMATION);
        return TRUE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    if (LOWORD(wParam) == IDOK)
        AcceptNewPassword(dialog);
    else if (LOWORD(wParam) == IDCANCEL)
        EndDialog(dialog, IDCANCEL);
    return TRUE;
}

void CheckPassword(HWND dialog) {
    WCHAR typed[kPasswordCapacity] = {};
    GetDlgItemTextW(dialog, IDC_ENTER_PASSWORD, typed, kPasswordCapacity);
    if (!typed[0]) {
        EndDialog(dialog, IDCANCEL);
    } else if (lstrcmpW(typed, DialogState<const PasswordBlock>(dialog)->text) == 0) {
        EndDialog(dialog, IDOK);
    } else {
        MessageFromString(dialog, IDS_PASSWORD_INCORRECT, kStopBox);
        SelectText(dialog, IDC_ENTER_PASSWORD);
    }
}

LONG_PTR EnterProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, kHelpAnchor))
        return TRUE;
    if (message == WM_INITDIALOG) {
        SetDialogState(dialog, lParam);
        InitDialogFrame(dialog, true, true);
        LimitPassword(dialog, IDC_ENTER_PASSWORD);
        return TRUE;
    }
    if (message != WM_COMMAND)
        return FALSE;
    if (LOWORD(wParam) == IDOK)
        CheckPassword(dialog);
    else if (LOWORD(wParam) == IDCANCEL)
        EndDialog(dialog, IDCANCEL);
    return TRUE;
}

} // namespace

bool AskNewPassword(PasswordBlock* password, HWND owner) {
    return RunDialog(IDD_PROTECT_BACKUP, owner, ProtectProcedure, reinterpret_cast<LPARAM>(password)) == IDOK;
}

bool AskPassword(const PasswordBlock& stored, HWND owner) {
    constexpr DWORD kSettleTime = 500; // milliseconds, for the picker that was up before to leave the screen
    if (!stored.text[0])
        return true;
    Sleep(kSettleTime);
    return RunDialog(IDD_ENTER_PASSWORD, owner, EnterProcedure, reinterpret_cast<LPARAM>(&stored)) == IDOK;
}
