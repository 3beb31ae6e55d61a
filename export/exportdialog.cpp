// The "Export Database" options.
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "export/export.h"
#include "resources/resource.h"

namespace {

constexpr int kFormatCapacity = 40;

void AddFormat(HWND dialog, UINT textId) {
    WCHAR text[kFormatCapacity];
    LoadText(textId, text);
    SendDlgItemMessageW(dialog, IDC_EXPORT_FORMAT, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
}

void InitExport(HWND dialog, const ExportState& state) {
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    AddFormat(dialog, IDS_TAB_SEPARATED);
    AddFormat(dialog, IDS_COMMA_SEPARATED);
    SendDlgItemMessageW(dialog, IDC_EXPORT_FORMAT, CB_SETCURSEL, static_cast<WPARAM>(state.format), 0);
    CheckDlgButton(dialog, IDC_EXPORT_UNICODE, state.writer.unicode ? BST_CHECKED : BST_UNCHECKED);
}

void AcceptExport(HWND dialog) {
    ExportState* const state = DialogState<ExportState>(dialog);
    state->format = static_cast<LONG>(SendDlgItemMessageW(dialog, IDC_EXPORT_FORMAT, CB_GETCURSEL, 0, 0));
    state->writer.unicode = IsDlgButtonChecked(dialog, IDC_EXPORT_UNICODE) == BST_CHECKED;
    if (state->format == kTabSeparated || state->format == kCommaSeparated)
        EndDialog(dialog, IDOK);
    else
        MessageFromString(dialog, IDS_SELECT_FILE_TYPE, kFailureBox);
}

LONG_PTR ExportProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#export"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        InitExport(dialog, *DialogState<ExportState>(dialog));
        return TRUE;
    case WM_COMMAND:
        HandleOkCancel(dialog, LOWORD(wParam), AcceptExport);
        return TRUE;
    }
    return FALSE;
}

} // namespace

bool ShowExportDialog(ExportState* state) {
    return RunDialog(IDD_EXPORT, state->owner, ExportProcedure, reinterpret_cast<LPARAM>(state)) == IDOK;
}
