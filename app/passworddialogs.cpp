#include "app/passworddialogs.h"

#include <algorithm>

#include "app/dialogframe.h"
#include "app/uiservices.h"
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

void InitProtectBackup(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    LimitPassword(dialog, IDC_PROTECT_PASSWORD);
    LimitPassword(dialog, IDC_PROTECT_CONFIRMATION);
}

void OnProtectBackupCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
        AcceptNewPassword(dialog);
        break;
    case IDCANCEL:
        EndDialog(dialog, IDCANCEL);
        break;
    }
}

LONG_PTR ProtectBackupProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, kHelpAnchor))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitProtectBackup(dialog);
        return TRUE;
    case WM_COMMAND:
        OnProtectBackupCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
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

void InitEnterPassword(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    LimitPassword(dialog, IDC_ENTER_PASSWORD);
}

void OnEnterPasswordCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDOK:
        CheckPassword(dialog);
        break;
    case IDCANCEL:
        EndDialog(dialog, IDCANCEL);
        break;
    }
}

LONG_PTR EnterPasswordProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, kHelpAnchor))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitEnterPassword(dialog);
        return TRUE;
    case WM_COMMAND:
        OnEnterPasswordCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

void ScramblePassword(PasswordBlock* password) {
    constexpr WCHAR kMask = 0x5C3A;
    WCHAR* const end = password->text + kPasswordCapacity;
    WCHAR* character = password->text;
    // A character that becomes 0 ends the password: stored ones are compared in this shortened form too.
    while (character < end - 1 && *character && (*character ^= kMask) != 0)
        ++character;
    std::fill(character, end, WCHAR(0));
}

bool AskNewPassword(PasswordBlock* password, HWND owner) {
    return RunDialog(IDD_PROTECT_BACKUP, owner, ProtectBackupProcedure, reinterpret_cast<LPARAM>(password)) ==
           IDOK;
}

bool AskPassword(const PasswordBlock& stored, HWND owner) {
    constexpr DWORD kSettleTime = 500; // milliseconds, for the picker that was up before to leave the screen
    if (!stored.text[0])
        return true;
    Sleep(kSettleTime);
    return RunDialog(IDD_ENTER_PASSWORD, owner, EnterPasswordProcedure, reinterpret_cast<LPARAM>(&stored)) ==
           IDOK;
}
