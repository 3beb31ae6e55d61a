#include "store/databasename.h"

#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "platform/controls.h"
#include "resources/resource.h"

namespace {

constexpr int kNameLimit = 32; // characters that the field takes; reading cuts them to what a name may have

struct NewName {
    bool rename = false; // decides the title only
    const WCHAR* sourceName = nullptr;
    WCHAR newName[kNameCapacity] = {};
};

NewName& TheNewName() {
    static NewName newName;
    return newName;
}

void InitNewName(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    if (TheNewName().rename) {
        WCHAR title[kTitleCapacity];
        LoadText(IDS_RENAME_DATABASE, title);
        SetFrameTitle(dialog, title);
    }
    SetDlgItemTextW(dialog, IDC_NEW_NAME_FROM, TheNewName().sourceName);
    SendDlgItemMessageW(dialog, IDC_NEW_NAME_TO, EM_SETLIMITTEXT, kNameLimit, 0);
    SetFocus(GetDlgItem(dialog, IDC_NEW_NAME_TO));
}

// Quirk: a database that exists but cannot be opened leaves its name free; the store then refuses it.
bool IsTaken(const WCHAR* name) {
    DbHandle database(nullptr);
    const QuietReports quiet(database);
    return database.Open(name, 0, 0) != INVALID_HANDLE_VALUE;
}

void AcceptNewName(HWND dialog) {
    WCHAR* name = TheNewName().newName;
    GetDlgItemTextW(dialog, IDC_NEW_NAME_TO, name, kNameCapacity);
    if (!name[0]) {
        EndDialog(dialog, IDCANCEL);
        return;
    }
    if (!IsTaken(name)) {
        EndDialog(dialog, IDOK);
        return;
    }
    MessageFromString(dialog, IDS_NAME_TAKEN, name, kFailureBox);
    ReturnToField(dialog, IDC_NEW_NAME_TO);
}

LONG_PTR NewNameProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#namedlg"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitNewName(dialog);
        return FALSE; // the focus is set
    case WM_COMMAND:
        HandleOkCancel(dialog, LOWORD(wParam), AcceptNewName);
        return TRUE;
    }
    return FALSE;
}

const WCHAR* AskName(HWND owner, const WCHAR* sourceName, bool rename) {
    TheNewName().rename = rename;
    TheNewName().sourceName = sourceName;
    const LONG_PTR answer = RunDialog(IDD_NEW_NAME, owner, NewNameProcedure, 0);
    TheNewName().sourceName = nullptr;
    return answer == IDOK ? TheNewName().newName : nullptr;
}

} // namespace

const WCHAR* AskNewDatabaseName(HWND owner, const WCHAR* sourceName) {
    return AskName(owner, sourceName, true);
}

const WCHAR* AskCopyName(HWND owner, const WCHAR* sourceName) {
    return AskName(owner, sourceName, false);
}

WCHAR* NewNameBuffer() {
    return TheNewName().newName;
}
