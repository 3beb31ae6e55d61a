#include "dblist/viewmodify.h"

#include <memory>
#include <new>

#include "app/uiservices.h"
#include "dblist/databaselist.h"
#include "platform/shell.h"
#include "resources/resource.h"
#include "viewer/addproperty.h"
#include "viewer/recordviewer.h"

namespace {

// Asks for a first record and writes it; true when the database has records then.
bool MakeFirstRecord(HWND owner, DbHandle& database, CEDBASEINFO* info) {
    if (MessageFromString(owner, IDS_CONFIRM_FIRST_RECORD, kWarningQuestionBox) != IDYES)
        return false;
    CEOID record = 0;
    CEPROPVAL property = {};
    if (!RunAddPropertyWizard(owner, &record, &property, nullptr))
        return false;
    const CEOID written = database.WriteProperty(0, &property);
    ReleasePropertyText(property);
    return written != 0 && database.GetInfo(info) && info->wNumRecords != 0;
}

// False when the database has no records, also after the user was asked for a first one.
bool HasRecords(HWND owner, const WCHAR* name) {
    DbHandle database(owner);
    CEDBASEINFO info;
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return true; // Quirk: the viewer reports it again
    // Quirk: information that cannot be read has been reported, and comes as a zeroed block without records.
    database.GetInfo(&info);
    return info.wNumRecords != 0 || MakeFirstRecord(owner, database, &info);
}

} // namespace

void ViewSelectedDatabase(HWND mainWindow) {
    WCHAR name[kNameCapacity];
    if (SelectedRowCount() != 1 || !SelectedDatabaseName(name) || !HasRecords(mainWindow, name))
        return;
    {
        const std::unique_ptr<RecordViewer> viewer(new (std::nothrow) RecordViewer);
        if (!viewer) {
            SHShowOutOfMemory(mainWindow, 0);
            return;
        }
        RunRecordViewer(viewer.get(), mainWindow, name);
    }
    UpdateSelectedRows();
}
