// Restoring databases from an archive.
#pragma once

#include "backup/archivereader.h"
#include "store/dbhandle.h"

// Restores from the archive at `path`, or from one that the user picks when it is null. The user chooses
// databases from a list when the program runs interactively; otherwise all are restored. True when the
// archive could be opened and the user did not turn back before the list.
bool RestoreCommand(HWND owner, const WCHAR* path);

class RestoreEngine : public ArchiveReader {
public:
    // Opens the archive, makes the codec and asks for the password; false on failure or Cancel.
    bool Open(HWND ownerWindow, const WCHAR* path);
    // Restores the databases whose rows are selected in the list view, or all without one (null). True unless
    // it was ended by a failure or by the user.
    bool RestoreDatabases(HWND list);

private:
    enum class Target { Create, Reuse, Skip, Stop };
    enum class Entry { Restored, Skipped, Stopped };
    bool RestoreEntries(HWND list);
    Entry RestoreEntry(const DatabaseBlock& block);
    Target ChooseTarget(DbHandle& database, WCHAR (&name)[kNameCapacity]);
    Target Overwrite(DbHandle& database, const WCHAR* name);
    bool RestoreRecords(DbHandle& database, const CEDBASEINFO& info, const WCHAR* target);
    bool ReadRecord(const WCHAR* target, RecordBuffer* record, RecordBuffer* stored);
    bool ReadData(const WCHAR* target, DWORD length, RecordBuffer* read);
    bool ExpandRecord(const RecordBuffer& stored, DWORD length, RecordBuffer* record);
};
