// "Main Registry Keys": which of them are saved or restored.
#include "app/application.h"
#include "app/dialogframe.h"
#include "platform/controls.h"
#include "regbackup/registrybackup.h"
#include "resources/resource.h"

namespace {

constexpr UINT kChecked = 2u << 12;
constexpr UINT kUnchecked = 1u << 12;

// In the order of the list.
struct MainKey {
    const WCHAR* name;
    bool RegistryBackup::*chosen;
};
constexpr MainKey kMainKeys[] = {
    {u"HKEY_CLASSES_ROOT", &RegistryBackup::saveClassesRoot},
    {u"HKEY_LOCAL_MACHINE", &RegistryBackup::saveLocalMachine},
    {u"HKEY_CURRENT_USER", &RegistryBackup::saveCurrentUser},
};

void FillList(HWND list, const RegistryBackup& backup) {
    constexpr int kWidth = 185;
    constexpr DWORD kStyles = LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT;
    ListView_SetExtendedListViewStyleEx(list, kStyles, kStyles);
    WCHAR noHeading[] = u"";
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = App().highResolution ? 2 * kWidth : kWidth;
    column.pszText = noHeading;
    ListView_InsertColumn(list, 0, column);
    int row = 0;
    for (const MainKey& key : kMainKeys) {
        LVITEMW item = {};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = const_cast<WCHAR*>(key.name);
        ListView_InsertItem(list, item);
        ListView_SetItemState(list, row++, backup.*key.chosen ? kChecked : kUnchecked, LVIS_STATEIMAGEMASK);
    }
}

void InitMainKeys(HWND dialog, const RegistryBackup& backup) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    FillList(GetDlgItem(dialog, IDC_MAIN_KEYS_LIST), backup);
    if (!backup.restoreMode)
        return;
    // Quirk: only the title says that it is a restore; the header stays that of a backup. Cleaning is not
    // offered, so its box is there and never seen.
    WCHAR text[kTitleCapacity];
    LoadText(IDS_RESTORE_REGISTRY, text);
    SetWindowTextW(dialog, text);
    LoadText(IDS_CLEAN_REGISTRY, text);
    SetDlgItemTextW(dialog, IDC_MAIN_KEYS_PASSWORD, text);
    ShowWindow(GetDlgItem(dialog, IDC_MAIN_KEYS_PASSWORD), SW_HIDE);
}

// False when none is checked.
bool ReadChoice(HWND dialog, RegistryBackup* backup) {
    const HWND list = GetDlgItem(dialog, IDC_MAIN_KEYS_LIST);
    bool any = false;
    int row = 0;
    for (const MainKey& key : kMainKeys) {
        backup->*key.chosen = ListView_GetItemState(list, row++, LVIS_STATEIMAGEMASK) == kChecked;
        any = any || backup->*key.chosen;
    }
    return any;
}

bool AcceptBackup(HWND dialog, RegistryBackup* backup) {
    backup->passwordChosen = IsDlgButtonChecked(dialog, IDC_MAIN_KEYS_PASSWORD) == BST_CHECKED;
    if (!backup->passwordChosen)
        return true;
    PasswordBlock typed = {};
    // Without a password the dialog stays up: no file may be less protected than its owner believes.
    if (!AskNewPassword(&typed, dialog) || !typed.text[0])
        return false;
    backup->password = typed;
    ScramblePassword(&backup->password);
    return true;
}

bool AcceptRestore(HWND dialog, RegistryBackup* backup) {
    backup->cleanRegistry = false;
    return MessageFromString(dialog, IDS_CONFIRM_RESTORE_REGISTRY, kWarningQuestionBox) == IDYES;
}

void AcceptMainKeys(HWND dialog) {
    RegistryBackup* const backup = DialogState<RegistryBackup>(dialog);
    if (!ReadChoice(dialog, backup))
        MessageBeep(MB_ICONEXCLAMATION);
    else if (backup->restoreMode ? AcceptRestore(dialog, backup) : AcceptBackup(dialog, backup))
        EndDialog(dialog, IDOK);
}

LONG_PTR MainKeysProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#regbackup"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitMainKeys(dialog, *DialogState<RegistryBackup>(dialog));
        return TRUE;
    case WM_SETTINGCHANGE:
        FollowScreenLayout(dialog, wParam, IDD_MAIN_KEYS, IDD_MAIN_KEYS_LANDSCAPE);
        return TRUE;
    case WM_COMMAND:
        HandleOkCancel(dialog, LOWORD(wParam), AcceptMainKeys);
        return TRUE;
    }
    return FALSE;
}

} // namespace

bool ShowMainKeys(HWND owner, RegistryBackup* backup) {
    return RunDialog(IDD_MAIN_KEYS, IDD_MAIN_KEYS_LANDSCAPE, owner, MainKeysProcedure,
                     reinterpret_cast<LPARAM>(backup)) == IDOK;
}
