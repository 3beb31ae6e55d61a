// Writes a database into a text file: a line for each record, a field for each of its properties.
#pragma once

#include "export/fieldwriter.h"

// The places in the dialog's list.
enum ExportFormat : LONG { kTabSeparated = 0, kCommaSeparated = 1 };

// One export. Nothing of it is kept for the next.
struct ExportState {
    explicit ExportState(HWND owner) : owner(owner) {}

    HWND owner; // of the dialog, the picker and the message boxes
    LONG format = kCommaSeparated;
    WCHAR fileName[MAX_PATH] = {};
    FieldWriter writer; // its `unicode` is the user's choice
};

// Asks for the format; false when the user cancelled.
bool ShowExportDialog(ExportState* state);
// Writes the database into the file at `path`; without one (null or empty) the user picks it. False when the
// user cancelled, and on failures, which are reported here; a partly written file stays.
bool ExportDatabase(ExportState* state, const WCHAR* name, const WCHAR* path);
// The whole command: the dialog, the picker, the file. True when the file was written.
bool ExportCommand(HWND owner, const WCHAR* name);
