// Opening the viewed database, walking its records, and what other processes change in it.
#include "app/uiservices.h"
#include "platform/errors.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "store/propertyvalues.h"
#include "viewer/recordviewer.h"
#include "viewer/reporting.h"

namespace {

constexpr DWORD kReloadDelay = 500; // milliseconds, so that many changes make one reload
constexpr int kSortItems = 4;

} // namespace

bool RecordViewer::OpenInOrder(int sort) {
    const CEPROPID property = HasSort(sort) ? info.rgSortSpecs[sort].propid : 0;
    return database->OpenWithNotify(dialog, databaseName, property, 0) != INVALID_HANDLE_VALUE;
}

bool RecordViewer::ReloadDatabase(CEOID oidToSelect) {
    if (ReadDatabase(oidToSelect))
        return true;
    Close(kViewerCancelled);
    return false;
}

bool RecordViewer::ReadDatabase(CEOID oidToSelect) {
    KillTimer(dialog, kReloadTimer);
    database->reportErrors = 0;
    database->Close();
    const bool opened = (HasSort(currentSort) && OpenInOrder(currentSort)) || OpenInOrder(kNoSort);
    if (!opened) {
        ReportAloud(*database, IDS_COULD_NOT_OPEN, databaseName);
        return false;
    }
    // Quirk: information that cannot be read comes as a zeroed block, and is then taken for that of a
    // database without records.
    if (!database->GetInfo(&info))
        ReportAloud(*database, IDS_COULD_NOT_UPDATE, nullptr);
    if (info.wNumRecords == 0) {
        MessageFromString(dialog, IDS_LAST_RECORD_DELETED, kFailureBox);
        return false;
    }
    recordIndex = 0;
    // A record that has been deleted meanwhile leaves the first one current.
    if (WalkAloud(*database, &DbHandle::SeekFirst, &recordIndex) && oidToSelect &&
        !database->SeekToRecord(oidToSelect, &recordIndex) && GetLastError() != ERROR_NO_MORE_ITEMS)
        ReportAloud(*database, IDS_COULD_NOT_FIND_RECORD, nullptr);
    changePending = 0;
    return true;
}

void RecordViewer::ReloadAndKeepPosition() {
    const CEPROPVAL* selected = SelectedProperty();
    const CEPROPID property = selected ? selected->propid : kSelectNone;
    if (ReloadDatabase(recordId)) {
        undo.Forget();
        FillPropertyList(property);
    }
}

void RecordViewer::Navigate(UINT command) {
    const bool saved = SaveEditedProperty(false);
    editedProperty = kNoProperty;
    bool moved = false;
    switch (command) {
    case IDM_RECORD_FIRST:
        moved = WalkAloud(*database, &DbHandle::SeekFirst, &recordIndex);
        break;
    case IDM_RECORD_PREVIOUS:
        moved = WalkAloud(*database, &DbHandle::SeekPrevious, &recordIndex);
        break;
    case IDM_RECORD_NEXT:
        moved = WalkAloud(*database, &DbHandle::SeekNext, &recordIndex);
        break;
    case IDM_RECORD_LAST:
        moved = WalkAloud(*database, &DbHandle::SeekLast, &recordIndex);
        break;
    }
    // Quirk: a step that leads nowhere leaves the value in its editor, which no longer belongs to a property.
    if (!moved && !saved)
        return;
    undo.Forget();
    FillPropertyList(kSelectNone);
}

void RecordViewer::FillSortMenu() {
    const HMENU menu = reinterpret_cast<HMENU>(SendMessageW(menuBar, SHCMBM_GETMENU, 0, 0));
    for (int sort = 0; sort < kSortItems; ++sort) {
        const UINT item = IDM_SORT_FIRST + sort;
        if (!HasSort(sort)) {
            DeleteMenu(menu, item, MF_BYCOMMAND);
            continue;
        }
        WCHAR label[kLabelCapacity];
        SortMenuLabel(info.rgSortSpecs[sort].propid, label);
        ModifyMenuW(menu, item, MF_BYCOMMAND, item, label);
    }
    CheckMenuRadioItem(menu, IDM_SORT_FIRST, IDM_SORT_UNSORTED, IDM_SORT_UNSORTED, MF_BYCOMMAND);
}

// By record order when the database cannot be opened in the other one.
bool RecordViewer::ReopenInOrder(int sort) {
    const LoudReports loud(*database);
    database->Close();
    if (HasSort(sort) && OpenInOrder(sort)) {
        currentSort = sort;
        return true;
    }
    if (!OpenInOrder(kNoSort))
        return false;
    currentSort = sort == kUnsorted ? kUnsorted : kNoSort;
    return true;
}

// Quirk: what stands in the editor is given up unasked.
void RecordViewer::SortBy(UINT command) {
    const int sort = static_cast<int>(command) - IDM_SORT_FIRST;
    if (sort == currentSort)
        return;
    if (!ReopenInOrder(sort))
        return; // the viewer stays without an open database
    recordIndex = 0;
    WalkAloud(*database, &DbHandle::SeekFirst, &recordIndex);
    undo.Forget();
    FillPropertyList(kSelectNone);
}

void RecordViewer::OnStoreChange(CEOID changedDatabase) {
    if (!database || changedDatabase != database->oid || ownWrites || changePending)
        return;
    changePending = 1;
    if (active)
        SetTimer(dialog, kReloadTimer, kReloadDelay, nullptr);
}

void RecordViewer::OnActivate(bool nowActive) {
    const bool wasActive = active;
    active = nowActive;
    if (nowActive && !wasActive && changePending)
        SetTimer(dialog, kReloadTimer, kReloadDelay, nullptr);
}

void RecordViewer::OnTimer(UINT id) {
    if (id != kReloadTimer)
        return;
    KillTimer(dialog, kReloadTimer);
    MessageFromString(dialog, IDS_MODIFIED_BY_OTHERS, databaseName, kInformationBox);
    ReloadAndKeepPosition();
}
