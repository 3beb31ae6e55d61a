#include "backup/backup.h"

#include "app/application.h"
#include "backup/backupdialog.h"
#include "backup/compressor.h"
#include "platform/datetime.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

// The last error of a read says that the record is damaged, or that it was deleted meanwhile.
bool IsLeftOut(DWORD error) {
    return error == ERROR_FILE_CORRUPT || error == ERROR_NO_MORE_ITEMS;
}

} // namespace

BackupEngine::~BackupEngine() = default;

bool BackupEngine::BeginBackup(HWND ownerWindow, bool showOptions, const WCHAR* path) {
    owner = ownerWindow;
    if (showOptions && RunsInteractively() && !ShowBackupOptions(owner, this))
        return false;
    if (compress && !codec && MakeCodec() != CodecResult::Ready) {
        ReportOutOfMemory();
        return false;
    }
    WCHAR picked[MAX_PATH] = {};
    if (!path && !PickFile(owner, picked, false, IDS_FILTER_BACKUP, u"*.bkp"))
        return false;
    file = CreateFileForWriting(owner, path ? path : picked, archivePath, &refused);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    leftPartial = true;
    header.databaseCount = 0;
    if (!WriteHeader()) {
        CloseFile(false);
        return false;
    }
    entryOffset = header.firstEntry;
    if (generateScript)
        script.Create(owner, archivePath, codec != nullptr, passwordFlag ? &password : nullptr);
    progress.Begin(owner, IDS_CONFIRM_ABORT_BACKUP, IDS_BACKUP_DATABASES);
    return true;
}

bool BackupEngine::WriteDatabase(const WCHAR* name) {
    const bool written = Append(name);
    complete = complete && written;
    return written;
}

bool BackupEngine::Append(const WCHAR* name) {
    DbHandle database(MessageOwner());
    if (Stopped() || database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return false;
    DatabaseBlock block = {};
    block.blockSize = sizeof block;
    if (!database.GetInfo(&block.info))
        return false;
    GetLocalTime(&block.backupTime);
    rewriting = false;
    Walk walk = WriteEntry(database, &block);
    // A reader goes by the block's count alone. When a record could not be read, or another program deleted
    // some meanwhile, the entry is written anew with the count that was found.
    while (walk == Walk::Shorter) {
        rewriting = true;
        walk = WriteEntry(database, &block);
    }
    if (walk == Walk::Refused)
        return false;
    // Quirk: an entry that ends early counts too, so that the archive is kept as far as it got. A compressed
    // one, which then lacks its prefix, keeps the whole archive from being listed.
    ++header.databaseCount;
    script.Append(MessageOwner(), name);
    return walk == Walk::Complete;
}

BackupEngine::Walk BackupEngine::WriteEntry(DbHandle& database, DatabaseBlock* block) {
    std::int64_t offset = std::int64_t(entryOffset) + (codec ? sizeof(EntryPrefix) : 0);
    const std::int64_t blockLength = WriteDatabaseBlock(*block, offset);
    if (blockLength < 0)
        return Walk::Refused;
    offset += blockLength;
    BeginProgressOn(IDS_STORING_RECORD, block->info);
    RecordHeader recordHeader = {};
    if (block->info.wNumRecords && !WriteRecords(database, *block, &recordHeader, &offset)) {
        Flush();
        return Walk::Stopped;
    }
    if (recordHeader.ordinal < block->info.wNumRecords) {
        block->info.wNumRecords = static_cast<WORD>(recordHeader.ordinal);
        return Flush() ? Walk::Shorter : Walk::Stopped;
    }
    return CompleteEntry(block, static_cast<DWORD>(blockLength), offset) ? Walk::Complete : Walk::Stopped;
}

// Writes as many records as the block declares, or as many as there are; false when the user cancelled, the
// store failed or a write did.
bool BackupEngine::WriteRecords(DbHandle& database, const DatabaseBlock& block, RecordHeader* recordHeader,
                                std::int64_t* offset) {
    RecordBuffer record;
    DWORD index = 0;
    bool proceed = true;
    bool found = WalkToFirst(database, &index);
    bool atEnd = !found && GetLastError() == ERROR_NO_MORE_ITEMS;
    while (found && proceed && recordHeader->ordinal < block.info.wNumRecords) {
        proceed = ProgressStep(IDS_STORING_RECORD, block.info) &&
                  WriteCurrentRecord(database, &record, recordHeader, offset);
        if (proceed) {
            found = WalkToNext(database, &index);
            atEnd = !found && GetLastError() == ERROR_NO_MORE_ITEMS;
        }
    }
    return proceed && (found || atEnd);
}

// What is left out is told once, though the entry may be written again.
CEOID BackupEngine::ReadCurrentRecord(DbHandle& database, RecordBuffer* record) {
    if (rewriting) {
        const QuietReports quiet(database);
        const CEOID read = database.ReadRecordForStorage(record);
        if (read || IsLeftOut(GetLastError()))
            return read;
    }
    return database.ReadRecordForStorage(record);
}

// False on a failure that ends the entry.
bool BackupEngine::WriteCurrentRecord(DbHandle& database, RecordBuffer* record, RecordHeader* recordHeader,
                                      std::int64_t* offset) {
    if (ReadCurrentRecord(database, record)) {
        BeforeStep(record->size);
        const std::int64_t end = WriteRecord(*record, recordHeader, *offset);
        if (end >= 0)
            *offset = end;
        return end >= 0;
    }
    const DWORD error = GetLastError();
    complete = complete && error == ERROR_NO_MORE_ITEMS;
    return IsLeftOut(error);
}

bool BackupEngine::Finish() {
    if (file == INVALID_HANDLE_VALUE)
        return false;
    BeforeStep(kLongStep); // all goes to the disk
    const bool cut = CutFile();
    const bool written = WriteHeader() && cut;
    const bool closed = CloseFile(complete && written);
    codec.reset();
    progress.End();
    script.Complete(owner, header.databaseCount, complete && written && closed);
    return written && closed;
}
