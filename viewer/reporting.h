// Failures that the viewer reports in its own words while its database handle is kept quiet.
#pragma once

#include "app/uiservices.h"
#include "store/dbhandle.h"

// Shows a string of the table with the last error's reason; the name null means the handle's own.
inline void ReportAloud(DbHandle& database, UINT stringId, const WCHAR* name) {
    LoadText(stringId, database.messageText);
    const LoudReports loud(database);
    database.ReportError(database.messageText, name);
}

// A step through the records; false at the end, and on a failure, which has been shown.
inline bool WalkAloud(DbHandle& database, DbHandle::SeekOperation seek, DWORD* index) {
    const LoudReports loud(database);
    return database.Walk(seek, index);
}
