// The backup of whole databases into an archive.
#pragma once

#include "backup/archivewriter.h"
#include "backup/autobackup.h"

// One backup: BeginBackup, then WriteDatabase for each name until one is refused, then Finish.
class BackupEngine : public ArchiveWriter {
public:
    ~BackupEngine() override;

    // Asks for the options when wanted (never when the program does not run interactively), takes `path` or
    // lets the user pick one, and creates the archive. False when the user cancelled and on failures, which
    // are reported here; nothing is left open then.
    bool BeginBackup(HWND ownerWindow, bool showOptions, const WCHAR* path);
    // Appends one database. False when it cannot be opened, a write failed or the user cancelled: the backup
    // ends then, with what was written so far.
    bool WriteDatabase(const WCHAR* name);
    // Completes and closes the archive and the script; true unless a write failed. Without an archive
    // it does nothing. What is not `complete` keeps an older archive and script, as their names with a `~`.
    bool Finish();

    bool compress = true;
    bool allDatabases = false; // "All databases" was chosen: the caller then takes them all
    bool generateScript = false;
    bool complete = true; // so far nothing is missing that was to be written
    bool refused = false; // the user said that the file that is there is not to be replaced
    ScriptWriter script;
    WCHAR archivePath[MAX_PATH] = {}; // where the archive is written

private:
    enum class Walk { Complete, Shorter, Stopped, Refused };
    bool Append(const WCHAR* name);
    Walk WriteEntry(DbHandle& database, DatabaseBlock* block);
    bool WriteRecords(DbHandle& database, const DatabaseBlock& block, RecordHeader* recordHeader,
                      std::int64_t* offset);
    CEOID ReadCurrentRecord(DbHandle& database, RecordBuffer* record);
    bool WriteCurrentRecord(DbHandle& database, RecordBuffer* record, RecordHeader* recordHeader,
                            std::int64_t* offset);

    bool rewriting = false; // an entry for which fewer records were found than its block declared
};
