// The rows of the database list: read from the store, selected, remembered.
#include <cstring>
#include <new>
#include <utility>

#include "app/application.h"
#include "app/uiservices.h"
#include "dblist/databaselist.h"
#include "lists/listsort.h"
#include "platform/errors.h"
#include "platform/objectstore.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/sizetext.h"

namespace {

enum RowIcon { kOrdinaryIcon = 0, kSystemIcon = 1, kInUseIcon = 2, kEmptyIcon = 4 };

RowIcon IconFor(const CEDBASEINFO& info) {
    if (IsSystemDatabase(info.szDbaseName))
        return kSystemIcon;
    if (info.wNumRecords == 0)
        return kEmptyIcon;
    CEOID oid = 0;
    const HANDLE opened = CeOpenDatabase(&oid, info.szDbaseName, 0, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return kInUseIcon;
    CloseHandle(opened);
    return kOrdinaryIcon;
}

void SetSizeAndDate(int row, const CEDBASEINFO& info) {
    WCHAR size[kSizeTextCapacity];
    FormatSizeText(info.dwSize, size);
    ListView_SetItemText(App().listView, row, kSizeColumn, size);
    ListView_SetItemText(App().listView, row, kDateColumn, DateTimeText(info.ftLastModified).DateText());
}

void InsertRow(int row, const CEDBASEINFO& info) {
    LVITEMW item = {};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_STATE | LVIF_PARAM;
    item.iItem = row;
    item.iImage = IconFor(info);
    item.lParam = row;
    item.pszText = const_cast<WCHAR*>(info.szDbaseName);
    ListView_InsertItem(App().listView, item);
    SetSizeAndDate(row, info);
}

// Inserts a database's row; false when its information cannot be read, with the last error set. One that has
// been deleted since the store was asked, or is not to be shown, is passed over.
bool InsertDatabase(CEOID oid, int* row) {
    CEOIDINFO object = {};
    if (!CeOidGetInfo(oid, &object))
        return GetLastError() == ERROR_FILE_NOT_FOUND;
    const bool hidden =
        IsSystemDatabase(object.infDatabase.szDbaseName) && !App().settings->showSystemDatabases;
    if (object.wObjType == OBJTYPE_DATABASE && !hidden)
        InsertRow((*row)++, object.infDatabase);
    return true;
}

// Inserts a row for every database that the store can tell; returns the first error, ERROR_SUCCESS for none.
DWORD InsertAllRows() {
    const HANDLE databases = CeFindFirstDatabase(0);
    if (databases == INVALID_HANDLE_VALUE)
        return GetLastError();
    DWORD failure = ERROR_SUCCESS;
    int row = 0;
    while (const CEOID oid = CeFindNextDatabase(databases))
        if (!InsertDatabase(oid, &row) && failure == ERROR_SUCCESS)
            failure = GetLastError();
    if (failure == ERROR_SUCCESS && GetLastError() != ERROR_NO_MORE_ITEMS)
        failure = GetLastError();
    CloseHandle(databases);
    return failure;
}

void SelectRow(int row, UINT state) {
    ListView_SetItemState(App().listView, row, state, state);
}

// True when a remembered row was selected. Quirk: the byte for no selection is taken for a row's number when
// there are that many rows.
bool RestoreListSelection() {
    const int count = DatabaseRowCount();
    bool any = false;
    for (const BYTE row : App().settings->selection) {
        if (row < count) {
            // The keyboard goes on from the first of them.
            SelectRow(row, any ? LVIS_SELECTED : LVIS_SELECTED | LVIS_FOCUSED);
            any = true;
        }
    }
    return any;
}

void SelectAfterRebuild(int selected, int pageBottom) {
    if (RestoreListSelection()) {
        ListView_EnsureVisible(App().listView, pageBottom);
        return;
    }
    const int count = DatabaseRowCount();
    if (count == 0)
        return;
    const int row = selected < count ? selected : count - 1;
    SelectRow(row, LVIS_SELECTED | LVIS_FOCUSED);
    ListView_EnsureVisible(App().listView, pageBottom);
    ListView_EnsureVisible(App().listView, row);
}

} // namespace

void NameRowIcons(HWND list) {
    constexpr std::pair<RowIcon, UINT> kNames[] = {{kSystemIcon, IDS_NAME_SYSTEM_ICON},
                                                   {kInUseIcon, IDS_NAME_IN_USE_ICON},
                                                   {kEmptyIcon, IDS_NAME_EMPTY_ICON}};
    for (const auto& [icon, id] : kNames) {
        WCHAR name[kTitleCapacity];
        LoadText(id, name);
        ListView_NameImage(list, icon, name);
    }
}

void RebuildDatabaseList() {
    const HWND list = App().listView;
    if (!list)
        return;
    DWORD failure = ERROR_SUCCESS;
    {
        const WaitCursor wait;
        SendMessageW(list, WM_SETREDRAW, FALSE, 0);
        const int selected = NextSelectedRow(-1);
        const int pageBottom = ListView_GetTopIndex(list) + ListView_GetCountPerPage(list) - 1;
        ListView_DeleteAllItems(list);
        failure = InsertAllRows();
        SortDatabaseList();
        SelectAfterRebuild(selected < 0 ? 0 : selected, pageBottom);
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    SetFocus(list);
    if (failure != ERROR_SUCCESS) {
        SetLastError(failure);
        DbHandle::ReportStoreFailure(App().mainWindow);
    }
}

void UpdateSelectedRows() {
    for (int row = NextSelectedRow(-1); row >= 0; row = NextSelectedRow(row)) {
        WCHAR name[kNameCapacity];
        DatabaseNameOfRow(row, name);
        DbHandle database(nullptr);
        CEDBASEINFO info;
        if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE || !database.GetInfo(&info))
            continue;
        LVITEMW item = {};
        item.mask = LVIF_IMAGE;
        item.iItem = row;
        item.iImage = IconFor(info);
        ListView_SetItem(App().listView, item);
        SetSizeAndDate(row, info);
    }
}

void ShowRenamedDatabase(const WCHAR* name, const WCHAR* newName) {
    for (int row = DatabaseRowCount() - 1; row >= 0; --row) {
        WCHAR rowName[kNameCapacity];
        DatabaseNameOfRow(row, rowName);
        if (lstrcmpW(rowName, name) == 0)
            ListView_SetItemText(App().listView, row, kNameColumn, newName);
    }
}

void SaveListSelection() {
    BYTE(&selection)[kSelectionBytes] = App().settings->selection;
    std::memset(selection, kNoSelection, kSelectionBytes);
    int count = 0;
    for (int row = NextSelectedRow(-1); row >= 0 && count < kSelectionBytes; row = NextSelectedRow(row))
        selection[count++] = static_cast<BYTE>(row);
}

std::unique_ptr<ListedDatabase[]> CopyRows(int* count) {
    *count = DatabaseRowCount();
    std::unique_ptr<ListedDatabase[]> rows(new (std::nothrow) ListedDatabase[*count]);
    for (int row = 0; rows && row < *count; ++row) {
        DatabaseNameOfRow(row, rows[row].name);
        rows[row].selected = ListView_GetItemState(App().listView, row, LVIS_SELECTED) != 0;
    }
    return rows;
}

int DatabaseRowCount() {
    return ListView_GetItemCount(App().listView);
}

int NextSelectedRow(int after) {
    if (!App().listView)
        return -1; // the window is gone
    return ListView_GetNextItem(App().listView, after, LVNI_SELECTED);
}

void DatabaseNameOfRow(int row, WCHAR (&name)[kNameCapacity]) {
    ListView_GetItemText(App().listView, row, kNameColumn, name);
}

bool SelectedDatabaseName(WCHAR (&name)[kNameCapacity]) {
    name[0] = 0;
    const int row = NextSelectedRow(-1);
    if (row < 0)
        return false;
    DatabaseNameOfRow(row, name);
    return true;
}

int SelectedRowCount() {
    return ListView_GetSelectedCount(App().listView);
}

void SortDatabaseList() {
    const WaitCursor wait;
    ListSort sort = SettingsSort(App().listView);
    SortListView(sort);
}

void SortByColumn(int column) {
    ChooseSortColumn(kDatabaseColumnKeys, column);
    SortDatabaseList();
}
