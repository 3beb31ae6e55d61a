#include "dblist/management.h"

#include "app/uiservices.h"
#include "dblist/databaselist.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/databasename.h"

namespace {

constexpr UINT kDestructiveQuestionBox = kWarningQuestionBox | MB_DEFBUTTON2; // No is the default

// Copies until a record cannot be written; one that cannot be read is left out.
void CopyRecords(DbHandle& from, DbHandle& to) {
    const WaitCursor wait;
    RecordBuffer record;
    DWORD index = 0;
    for (bool found = WalkToFirst(from, &index); found; found = WalkToNext(from, &index)) {
        const QuietReports quiet(from);
        if (from.ReadRecord(&record) && !to.WriteRecord(0, record))
            break;
    }
}

} // namespace

bool DeleteDatabaseCommand(HWND owner, const WCHAR* name) {
    if (MessageFromString(owner, IDS_CONFIRM_DELETE, name, kDestructiveQuestionBox) != IDYES)
        return false;
    return DbHandle(owner).DeleteDatabase(name);
}

bool EmptyDatabaseCommand(HWND owner, const WCHAR* name) {
    if (MessageFromString(owner, IDS_CONFIRM_EMPTY, name, kDestructiveQuestionBox) != IDYES)
        return false;
    DbHandle database(owner);
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return false;
    const WaitCursor wait;
    const bool emptied = database.DeleteAllRecords();
    database.Close();
    return emptied;
}

bool CopyDatabaseCommand(HWND owner, const WCHAR* name) {
    const WCHAR* newName = AskCopyName(owner, name);
    if (!newName)
        return false;
    DbHandle source(owner);
    DbHandle copy(owner);
    CEDBASEINFO info;
    if (source.Open(name, 0, 0) == INVALID_HANDLE_VALUE || !source.GetInfo(&info))
        return false;
    if (copy.Create(newName, info) == INVALID_HANDLE_VALUE)
        return false;
    if (info.wNumRecords != 0)
        CopyRecords(source, copy);
    return true;
}

bool RenameDatabaseCommand(HWND owner, const WCHAR* name, bool prompt) {
    DbHandle database(owner);
    CEDBASEINFO info;
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE || !database.GetInfo(&info))
        return false;
    if (prompt && !AskNewDatabaseName(owner, info.szDbaseName))
        return false;
    CopyText(info.szDbaseName, NewNameBuffer());
    const CEOID oid = database.oid;
    database.Close();
    return database.SetInfo(oid, info);
}

bool RenameDatabaseTo(HWND owner, const WCHAR* name, const WCHAR* newName) {
    CopyText(NewNameBuffer(), kNameCapacity, newName);
    // The store would take the name that a database has already, and change its time for nothing.
    if (lstrcmpW(NewNameBuffer(), name) == 0 || !RenameDatabaseCommand(owner, name, false))
        return false;
    ShowRenamedDatabase(name, NewNameBuffer());
    return true;
}
