// Failures that the viewer reports in its own words while its database handle is kept quiet.
#pragma once

#include "app/uiservices.h"
#include "store/dbhandle.h"

// Shows a string of the table with the last error's reason; the name null means the handle's own.
inline void ReportAloud(DbHandle& database, UINT stringId, const WCHAR* name) {
    LoadText(stringId, database.messageText);
    database.reportErrors = 1;
    database.ReportError(database.messageText, name);
    database.reportErrors = 0;
}
