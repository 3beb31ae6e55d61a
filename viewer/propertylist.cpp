// The list of the current record's properties.
#include <algorithm>

#include "app/uiservices.h"
#include "lists/listsort.h"
#include "platform/errors.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/propertyvalues.h"
#include "viewer/recordviewer.h"
#include "viewer/reporting.h"

namespace {

enum PropertyColumn { kTypeColumn, kSizeColumn, kIdColumn };
constexpr int kPositionCapacity = 64;

int SelectedRow(HWND list) {
    return ListView_GetNextItem(list, -1, LVNI_SELECTED);
}

void InsertPropertyRow(HWND list, int row, const CEPROPVAL& property, const WCHAR* typeName, WORD index) {
    LVITEMW item = {};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = row;
    item.lParam = index;
    item.pszText = const_cast<WCHAR*>(typeName);
    ListView_InsertItem(list, item);
    WCHAR text[kLabelCapacity];
    TypeSizeText(property, text);
    ListView_SetItemText(list, row, kSizeColumn, text);
    wsprintfW(text, u"%u", HIWORD(property.propid));
    ListView_SetItemText(list, row, kIdColumn, text);
}

void SortProperties(HWND list) {
    const WaitCursor wait;
    ListSort sort = SettingsSort(list);
    SortListView(sort);
}

int RowOfIndex(HWND list, LPARAM index) {
    LVFINDINFOW find = {};
    find.flags = LVFI_PARAM;
    find.lParam = index;
    return ListView_FindItem(list, find);
}

} // namespace

void RecordViewer::SelectRow(int row) {
    constexpr UINT kState = LVIS_SELECTED | LVIS_FOCUSED;
    ListView_SetItemState(Control(IDC_VIEWER_LIST), row, kState, kState);
}

void RecordViewer::FillPropertyList(CEPROPID propIdToSelect) {
    const HWND focus = GetFocus();
    HideEditors();
    record.propCount = 0; // also where no database is open to read from
    recordId = database->ReadRecord(&record);
    const DWORD failure = recordId ? ERROR_SUCCESS : GetLastError();
    const int selectedBefore = SelectedRow(Control(IDC_VIEWER_LIST));
    InsertPropertyRows();
    const int row = SelectAndSort(propIdToSelect, selectedBefore);
    if (record.propCount == 0 || row < 0)
        OnSelectionChanged();
    ReturnFocus(focus);
    ShowPosition();
    ReportUnreadable(failure);
}

void RecordViewer::InsertPropertyRows() {
    const HWND list = Control(IDC_VIEWER_LIST);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(list);
    editedProperty = kNoProperty;
    shownType = kNoType;
    int row = 0;
    for (WORD index = 0; index < record.propCount; ++index) {
        const CEPROPVAL& property = record.Properties()[index];
        // A type that nobody knows is kept in the record and gets no row.
        if (const WCHAR* typeName = TypeListName(TypeFromPropID(property.propid)))
            InsertPropertyRow(list, row++, property, typeName, index);
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
}

// Selecting raises the notification that shows the value; nothing else here does. Returns the selected row.
int RecordViewer::SelectAndSort(CEPROPID propIdToSelect, int selectedBefore) {
    const HWND list = Control(IDC_VIEWER_LIST);
    const CEPROPVAL* wanted = propIdToSelect == kSelectNone ? nullptr : record.Find(propIdToSelect);
    int row = wanted ? RowOfIndex(list, wanted - record.Properties()) : -1;
    if (row >= 0) {
        SelectRow(row);
        SortProperties(list);
        row = SelectedRow(list);
    } else {
        SortProperties(list);
        row = std::min(std::max(selectedBefore, 0), ListView_GetItemCount(list) - 1);
        SelectRow(row);
    }
    ListView_EnsureVisible(list, row);
    UpdateWindow(list);
    return row;
}

// That a record is gone or a database closed is known; any other reason for an empty list is reported.
void RecordViewer::ReportUnreadable(DWORD failure) {
    if (failure == ERROR_SUCCESS || failure == ERROR_NO_MORE_ITEMS ||
        database->handle == INVALID_HANDLE_VALUE)
        return;
    SetLastError(failure);
    ReportAloud(*database, IDS_COULD_NOT_READ_RECORD, nullptr);
}

// Gives the focus back to the editor that had it before it was hidden, so that one can type from record to
// record; to the list when that editor is no longer shown.
void RecordViewer::ReturnFocus(HWND focus) {
    if (focus && focus != GetFocus())
        SetFocus(IsWindowVisible(focus) && IsWindowEnabled(focus) ? focus : Control(IDC_VIEWER_LIST));
}

void RecordViewer::ShowPosition() {
    WCHAR format[kPositionCapacity];
    WCHAR text[kPositionCapacity];
    LoadText(IDS_RECORD_OF, format);
    wsprintfW(text, format, recordIndex + 1, static_cast<DWORD>(info.wNumRecords));
    SetDlgItemTextW(dialog, IDC_VIEWER_POSITION, text);
    UpdateWindow(Control(IDC_VIEWER_POSITION));
}

WORD RecordViewer::SelectedPropertyIndex() const {
    const HWND list = Control(IDC_VIEWER_LIST);
    LVITEMW item = {};
    item.mask = LVIF_PARAM;
    item.iItem = SelectedRow(list);
    if (item.iItem < 0 || !ListView_GetItem(list, &item))
        return kNoProperty;
    return item.lParam < record.propCount ? static_cast<WORD>(item.lParam) : kNoProperty;
}

CEPROPVAL* RecordViewer::SelectedProperty() const {
    const WORD index = SelectedPropertyIndex();
    return index == kNoProperty ? nullptr : record.Properties() + index;
}

void RecordViewer::OnSelectionChanged() {
    WORD index = SelectedPropertyIndex();
    if (index == kNoProperty) {
        EnableWindow(Control(IDC_VIEWER_DELETE), FALSE);
        return;
    }
    // Quirk: the Delete button stays disabled when the edited property was only deselected meanwhile.
    if (index == editedProperty)
        return;
    // The new value may move its row, so the list is to find the tapped property by its identifier.
    SaveEditedProperty(true, record.Properties()[index].propid);
    // A list that was filled anew, written or not, has shown its selection already; the record may even be
    // gone.
    index = SelectedPropertyIndex();
    if (index == kNoProperty || index == editedProperty)
        return;
    ShowValue(record.Properties()[index]);
    EnableWindow(Control(IDC_VIEWER_DELETE), TRUE);
    editedProperty = index;
    UpdateMenus(nullptr);
}

void RecordViewer::OnColumnClick(int column) {
    ChooseSortColumn(kPropertyColumnKeys, column);
    SortProperties(Control(IDC_VIEWER_LIST));
    OnSelectionChanged();
}
