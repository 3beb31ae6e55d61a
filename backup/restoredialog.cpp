#include "backup/restoredialog.h"

#include "app/application.h"
#include "app/dialogframe.h"
#include "app/uiservices.h"
#include "backup/restore.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/sizetext.h"

namespace {

// How the dialog ends.
constexpr int kRestored = 1;
constexpr int kNotRestored = 2;
constexpr int kUnreadable = 3;

struct RestoreList {
    RestoreEngine* engine;
    bool busy;
};

void InsertColumn(HWND list, int column, UINT headingId, int width) {
    WCHAR heading[32];
    LoadText(headingId, heading);
    LVCOLUMNW info = {};
    info.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    info.cx = App().highResolution ? 2 * width : width;
    info.pszText = heading;
    info.iSubItem = column;
    ListView_InsertColumn(list, column, info);
}

void InsertRow(HWND list, DWORD row, DWORD entryOffset, DatabaseBlock* block) {
    LVITEMW item = {};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = static_cast<int>(row);
    item.pszText = block->info.szDbaseName;
    item.lParam = static_cast<LPARAM>(entryOffset);
    ListView_InsertItem(list, item);
    WCHAR size[kSizeTextCapacity];
    FormatSizeText(block->info.dwSize, size);
    ListView_SetItemText(list, static_cast<int>(row), 1, size);
}

bool InsertEntries(HWND list, RestoreEngine* engine) {
    engine->entryOffset = engine->header.firstEntry;
    const DWORD count = engine->header.databaseCount;
    for (DWORD i = 0; i < count; ++i) {
        DatabaseBlock block;
        if (!engine->ReadDatabaseBlock(&block))
            return false;
        InsertRow(list, i, engine->entryOffset, &block);
        const bool last = i + 1 == count;
        if (!last && !engine->MoveToNextEntry(block))
            return false;
    }
    return true;
}

bool InitRestoreList(HWND dialog, RestoreEngine* engine) {
    constexpr int kNameWidth = 140;
    constexpr int kSizeWidth = 60;
    InitDialogFrame(dialog, kDoneButton | kHelpButton);
    const HWND list = GetDlgItem(dialog, IDC_SELECTION_LIST);
    NameWindow(list, IDS_NAME_DATABASES);
    InsertColumn(list, 0, IDS_RESTORE_COLUMN_NAME, kNameWidth);
    InsertColumn(list, 1, IDS_RESTORE_COLUMN_SIZE, kSizeWidth);
    ListView_SetExtendedListViewStyleEx(list, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
    if (App().settings)
        SendDlgItemMessageW(dialog, IDC_SELECTION_SUMMARY, WM_SETFONT,
                            reinterpret_cast<WPARAM>(App().settings->boldFont), TRUE);
    if (!InsertEntries(list, engine))
        return false;
    constexpr UINT kSelected = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(list, 0, kSelected, kSelected);
    return true;
}

// Finds the first selected row whose block can be read.
bool FindSelectedBlock(HWND list, RestoreEngine* engine, DatabaseBlock* block) {
    int row = -1;
    while ((row = ListView_GetNextItem(list, row, LVNI_SELECTED)) >= 0) {
        LVITEMW item = {};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        if (ListView_GetItem(list, &item) &&
            engine->PeekDatabaseBlock(static_cast<DWORD>(item.lParam), block))
            return true;
    }
    return false;
}

void UpdateSummary(HWND dialog, RestoreEngine* engine) {
    DatabaseBlock block;
    WCHAR text[kMessageCapacity] = {};
    if (FindSelectedBlock(GetDlgItem(dialog, IDC_SELECTION_LIST), engine, &block)) {
        WCHAR format[kMessageCapacity];
        LoadText(engine->header.compressed ? IDS_SUMMARY_COMPRESSED : IDS_SUMMARY_NOT_COMPRESSED, format);
        const SizeInKilobytes size(block.info.dwSize);
        DateTimeText stored(block.backupTime);
        wsprintfW(text, format, size.whole, size.hundredths, stored.DateText(), stored.TimeText(false),
                  block.info.wNumRecords);
    }
    SetDlgItemTextW(dialog, IDC_SELECTION_SUMMARY, text);
}

void Restore(HWND dialog, RestoreList* state) {
    if (state->busy) // the restore dispatches messages
        return;
    state->busy = true;
    ShowWindow(dialog, SW_HIDE);
    const bool restored = state->engine->RestoreDatabases(GetDlgItem(dialog, IDC_SELECTION_LIST));
    EndDialog(dialog, restored ? kRestored : kNotRestored);
}

void OnRestoreListCommand(HWND dialog, UINT command) {
    RestoreList* const state = DialogState<RestoreList>(dialog);
    if (command == IDOK)
        Restore(dialog, state);
    else if (command == IDCANCEL && !state->busy)
        EndDialog(dialog, kNotRestored);
}

bool IsSelectionChange(LPARAM lParam) {
    const NMHDR* const notification = reinterpret_cast<const NMHDR*>(lParam);
    return notification->idFrom == IDC_SELECTION_LIST && notification->code == LVN_ITEMCHANGED &&
           (reinterpret_cast<const NMLISTVIEW*>(lParam)->uChanged & LVIF_STATE);
}

LONG_PTR RestoreListProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HandleFrameMessage(dialog, message, wParam, lParam, u"tarnwickscope.htm#restore"))
        return TRUE;
    switch (message) {
    case WM_INITDIALOG:
        SetDialogState(dialog, lParam);
        if (!InitRestoreList(dialog, DialogState<RestoreList>(dialog)->engine))
            EndDialog(dialog, kUnreadable);
        return TRUE;
    case WM_SETTINGCHANGE:
        FollowScreenLayout(dialog, wParam, IDD_SELECTION_LIST, IDD_SELECTION_LIST_LANDSCAPE);
        return TRUE;
    case WM_COMMAND:
        OnRestoreListCommand(dialog, LOWORD(wParam));
        return TRUE;
    case WM_NOTIFY:
        if (!IsSelectionChange(lParam))
            return FALSE;
        UpdateSummary(dialog, DialogState<RestoreList>(dialog)->engine);
        return TRUE;
    }
    return FALSE;
}

} // namespace

bool ShowRestoreList(HWND owner, RestoreEngine* engine) {
    RestoreList state = {engine, false};
    return RunDialog(IDD_SELECTION_LIST, IDD_SELECTION_LIST_LANDSCAPE, owner, RestoreListProcedure,
                     reinterpret_cast<LPARAM>(&state)) == kRestored;
}
