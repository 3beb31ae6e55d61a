#include "app/passworddialogs.h"

#include <algorithm>

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr int kMinPasswordLength = 4;

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
    ReturnToField(dialog, IDC_PROTECT_PASSWORD);
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
        ReturnToField(dialog, IDC_ENTER_PASSWORD);
    }
}

void InitPasswordDialog(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    // Protecting has the first two, restoring the last one.
    for (const int id : {IDC_PROTECT_PASSWORD, IDC_PROTECT_CONFIRMATION, IDC_ENTER_PASSWORD})
        SendDlgItemMessageW(dialog, id, EM_SETLIMITTEXT, kPasswordCapacity - 1, 0);
}

// The two dialogs are alike but for what OK does.
template <void (*accept)(HWND dialog)>
LONG_PTR PasswordProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#passwd"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitPasswordDialog(dialog);
        return TRUE;
    case WM_COMMAND:
        HandleOkCancel(dialog, LOWORD(wParam), accept);
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
    return RunDialog(IDD_PROTECT_BACKUP, owner, PasswordProcedure<AcceptNewPassword>,
                     reinterpret_cast<LPARAM>(password)) == IDOK;
}

bool AskPassword(const PasswordBlock& stored, HWND owner) {
    constexpr DWORD kSettleTime = 500; // milliseconds, for the picker that was up before to leave the screen
    if (!stored.text[0])
        return true;
    Sleep(kSettleTime);
    return RunDialog(IDD_ENTER_PASSWORD, owner, PasswordProcedure<CheckPassword>,
                     reinterpret_cast<LPARAM>(&stored)) == IDOK;
}
