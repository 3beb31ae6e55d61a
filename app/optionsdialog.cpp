#include "app/optionsdialog.h"

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "resources/resource.h"

namespace {

// What the registry held may be any number; all but 0 are on, as they are wherever the flags are used.
void ShowFlag(HWND dialog, int control, DWORD flag) {
    CheckDlgButton(dialog, control, flag ? BST_CHECKED : BST_UNCHECKED);
}

void InitOptions(HWND dialog) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    const Settings& settings = *App().settings;
    ShowFlag(dialog, IDC_OPTIONS_SHOW_SYSTEM, settings.showSystemDatabases);
    ShowFlag(dialog, IDC_OPTIONS_BOLD, settings.bold);
    ShowFlag(dialog, IDC_OPTIONS_FULL_ROW, settings.fullRow);
    ShowFlag(dialog, IDC_OPTIONS_PROMPT_SCRIPT, settings.promptScript);
    ShowFlag(dialog, IDC_OPTIONS_SHOW_WARNING, settings.showWarning);
    ShowFlag(dialog, IDC_OPTIONS_DOUBLE_TAP, settings.doubleTap);
}

void AcceptOptions(HWND dialog) {
    Settings& settings = *App().settings;
    settings.showSystemDatabases = IsDlgButtonChecked(dialog, IDC_OPTIONS_SHOW_SYSTEM) == BST_CHECKED;
    settings.bold = IsDlgButtonChecked(dialog, IDC_OPTIONS_BOLD) == BST_CHECKED;
    settings.fullRow = IsDlgButtonChecked(dialog, IDC_OPTIONS_FULL_ROW) == BST_CHECKED;
    settings.promptScript = IsDlgButtonChecked(dialog, IDC_OPTIONS_PROMPT_SCRIPT) == BST_CHECKED;
    settings.showWarning = IsDlgButtonChecked(dialog, IDC_OPTIONS_SHOW_WARNING) == BST_CHECKED;
    settings.doubleTap = IsDlgButtonChecked(dialog, IDC_OPTIONS_DOUBLE_TAP) == BST_CHECKED;
    settings.RecreateListFont();
    EndDialog(dialog, IDOK);
}

LONG_PTR OptionsProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#options"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        InitOptions(dialog);
        return TRUE;
    case WM_COMMAND:
        HandleOkCancel(dialog, LOWORD(wParam), AcceptOptions);
        return TRUE;
    }
    return FALSE;
}

} // namespace

bool ShowOptionsDialog(HWND owner) {
    return RunDialog(IDD_OPTIONS, owner, OptionsProcedure, 0) == IDOK;
}
