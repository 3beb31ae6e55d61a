#include "backup/backupdialog.h"

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/passworddialogs.h"
#include "app/uiservices.h"
#include "backup/backup.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

bool ListHasSelection() {
    return App().listView && ListView_GetSelectedCount(App().listView) > 0;
}

bool IsChecked(HWND dialog, int id) {
    return IsDlgButtonChecked(dialog, id) == BST_CHECKED;
}

void InitBackupOptions(HWND dialog, const BackupEngine& engine) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    NameWindow(GetDlgItem(dialog, IDC_BACKUP_SCRIPT_BROWSE), IDS_NAME_BROWSE);
    const bool selection = ListHasSelection();
    CheckRadioButton(dialog, IDC_BACKUP_SELECTED, IDC_BACKUP_ALL,
                     selection ? IDC_BACKUP_SELECTED : IDC_BACKUP_ALL);
    EnableWindow(GetDlgItem(dialog, IDC_BACKUP_SELECTED), selection);
    EnableWindow(GetDlgItem(dialog, IDC_BACKUP_ALL), selection);
    CheckDlgButton(dialog, IDC_BACKUP_COMPRESS, engine.compress ? BST_CHECKED : BST_UNCHECKED);
    SendDlgItemMessageW(dialog, IDC_BACKUP_SCRIPT_PATH, EM_SETLIMITTEXT, MAX_PATH, 0);
    SetDlgItemTextW(dialog, IDC_BACKUP_SCRIPT_PATH, App().settings->scriptName);
    EnableWindow(GetDlgItem(dialog, IDC_BACKUP_SCRIPT_PATH), FALSE);
    EnableWindow(GetDlgItem(dialog, IDC_BACKUP_SCRIPT_BROWSE), FALSE);
}

void EnableScriptPath(HWND dialog) {
    const bool enable = IsChecked(dialog, IDC_BACKUP_SCRIPT);
    EnableWindow(GetDlgItem(dialog, IDC_BACKUP_SCRIPT_PATH), enable);
    EnableWindow(GetDlgItem(dialog, IDC_BACKUP_SCRIPT_BROWSE), enable);
}

void BrowseForScript(HWND dialog) {
    WCHAR path[MAX_PATH] = {};
    GetDlgItemTextW(dialog, IDC_BACKUP_SCRIPT_PATH, path, MAX_PATH);
    if (PickFile(dialog, path, false, IDS_FILTER_SCRIPT, u"*.abk"))
        SetDlgItemTextW(dialog, IDC_BACKUP_SCRIPT_PATH, path);
}

void AcceptBackupOptions(HWND dialog) {
    BackupEngine* const engine = DialogState<BackupEngine>(dialog);
    engine->compress = IsChecked(dialog, IDC_BACKUP_COMPRESS);
    engine->allDatabases = IsChecked(dialog, IDC_BACKUP_ALL);
    engine->generateScript = IsChecked(dialog, IDC_BACKUP_SCRIPT);
    engine->passwordFlag = IsChecked(dialog, IDC_BACKUP_PASSWORD);
    if (engine->passwordFlag) {
        PasswordBlock typed = {};
        // Without a password these options stay up: no archive may be less protected than its owner believes.
        if (!AskNewPassword(&typed, dialog) || !typed.text[0])
            return;
        engine->password = typed;
        ScramblePassword(&engine->password);
    }
    if (engine->generateScript)
        GetDlgItemTextW(dialog, IDC_BACKUP_SCRIPT_PATH, App().settings->scriptName, MAX_PATH);
    EndDialog(dialog, IDOK);
}

void OnBackupOptionsCommand(HWND dialog, UINT command) {
    switch (command) {
    case IDC_BACKUP_SCRIPT:
        EnableScriptPath(dialog);
        break;
    case IDC_BACKUP_SCRIPT_BROWSE:
        BrowseForScript(dialog);
        break;
    default:
        HandleOkCancel(dialog, command, AcceptBackupOptions);
    }
}

LONG_PTR BackupOptionsProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#backup"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitBackupOptions(dialog, *DialogState<BackupEngine>(dialog));
        return TRUE;
    case WM_SETTINGCHANGE:
        FollowScreenLayout(dialog, wParam, IDD_BACKUP_OPTIONS, IDD_BACKUP_OPTIONS_LANDSCAPE);
        return TRUE;
    case WM_COMMAND:
        OnBackupOptionsCommand(dialog, LOWORD(wParam));
        return TRUE;
    }
    return FALSE;
}

} // namespace

bool ShowBackupOptions(HWND owner, BackupEngine* engine) {
    return RunDialog(IDD_BACKUP_OPTIONS, IDD_BACKUP_OPTIONS_LANDSCAPE, owner, BackupOptionsProcedure,
                     reinterpret_cast<LPARAM>(engine)) == IDOK;
}
