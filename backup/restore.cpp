#include "backup/restore.h"

#include <algorithm>
#include <cstring>

#include "app/application.h"
#include "app/passworddialogs.h"
#include "backup/compressor.h"
#include "backup/restoredialog.h"
#include "platform/controls.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/databaseexists.h"
#include "store/databasename.h"

namespace {

// A few kilobytes of code stream can stand for any amount of bytes. More than this fits no heap together with
// what else it holds.
constexpr DWORD kMaxRecordSize = 256 * 1024 * 1024;

bool RowIsSelected(HWND list, DWORD row) {
    return ListView_GetItemState(list, static_cast<int>(row), LVIS_SELECTED) != 0;
}

// Neither a run without dialogs nor one without messages has anybody to answer: it overwrites.
bool MayAsk() {
    return RunsInteractively() && !RunsUnattended();
}

bool LeaveOut(const CEDBASEINFO& database) {
    return database.szDbaseName[0] == u'\\' && !App().settings->includeSystemDatabases;
}

// Room for `size` bytes at the record's data; what is there stays.
bool MakeRoom(RecordBuffer* record, DWORD size) {
    if (record->data && LocalSize(record->data) >= size)
        return true;
    void* const grown =
        record->data ? LocalReAlloc(record->data, size, LMEM_MOVEABLE) : LocalAlloc(LMEM_FIXED, size);
    if (grown)
        record->data = static_cast<BYTE*>(grown);
    return grown;
}

} // namespace

bool RestoreCommand(HWND owner, const WCHAR* path) {
    WCHAR picked[MAX_PATH] = {};
    if (!path && !PickFile(owner, picked, true, IDS_FILTER_BACKUP, u"*.bkp"))
        return false;
    RestoreEngine engine;
    if (!engine.Open(owner, path ? path : picked))
        return false;
    if (RunsInteractively())
        ShowRestoreList(owner, &engine);
    else
        engine.RestoreDatabases(nullptr);
    return true;
}

bool RestoreEngine::Open(HWND ownerWindow, const WCHAR* path) {
    owner = ownerWindow;
    if (!OpenFile(path) || !ReadHeader())
        return false;
    if (header.compressed) {
        const CodecResult result = MakeCodec();
        if (result == CodecResult::NoCodec)
            ReportFailure(IDS_UNCOMPRESS_NO_MEMORY);
        else if (result == CodecResult::NoTables)
            ReportOutOfMemory();
        if (result != CodecResult::Ready)
            return false;
    }
    if (!passwordFlag || !password.text[0])
        return true;
    ScramblePassword(&password);
    const PasswordBlock stored = password;
    return AskPassword(stored, owner);
}

bool RestoreEngine::RestoreDatabases(HWND list) {
    if (!ReadHeader())
        return false;
    entryOffset = header.firstEntry;
    progress.Begin(owner, IDS_CONFIRM_ABORT_RESTORE, IDS_RESTORE_DATABASES);
    const bool ok = RestoreEntries(list);
    progress.End();
    return ok;
}

// Quirk: only a row that is not selected and a restored database lead on to the next entry. After any other
// skip the next turn comes back to the same entry and asks about it again, and the archive's last databases
// stay unvisited.
bool RestoreEngine::RestoreEntries(HWND list) {
    for (DWORD i = 0; i < header.databaseCount; ++i) {
        DatabaseBlock block;
        if (Stopped() || !ReadDatabaseBlock(&block))
            return false;
        if (!list && LeaveOut(block.info))
            return true; // nobody is asked, so each further turn would come back and leave it out again
        if (!list || RowIsSelected(list, i)) {
            const Entry entry = RestoreEntry(block);
            if (entry == Entry::Stopped)
                return false;
            if (entry == Entry::Skipped)
                continue;
        }
        const bool last = i + 1 == header.databaseCount;
        if (!last && !MoveToNextEntry(block))
            return false;
    }
    return true;
}

RestoreEngine::Entry RestoreEngine::RestoreEntry(const DatabaseBlock& block) {
    BeginProgressOn(IDS_RESTORING_RECORD, block.info);
    DbHandle database(MessageOwner());
    WCHAR target[kNameCapacity];
    CopyText(target, block.info.szDbaseName);
    const Target choice = ChooseTarget(database, target);
    if (choice == Target::Skip)
        return Entry::Skipped;
    if (choice == Target::Stop)
        return Entry::Stopped;
    if (choice == Target::Create && database.Create(target, block.info) == INVALID_HANDLE_VALUE)
        return Entry::Stopped;
    if (RestoreRecords(database, block.info, target)) {
        database.Close();
        return Entry::Restored;
    }
    // A database of ours goes; one that was there before can only be left empty.
    if (choice == Target::Reuse)
        database.DeleteAllRecords();
    database.Close();
    if (choice == Target::Create)
        database.DeleteDatabase(target);
    return Entry::Stopped;
}

// Takes the archived name and leaves the one to restore to. A database to be reused is left open and empty.
RestoreEngine::Target RestoreEngine::ChooseTarget(DbHandle& database, WCHAR (&name)[kNameCapacity]) {
    {
        const QuietReports quiet(database);
        if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
            return Target::Create;
        database.Close();
    }
    const int answer = MayAsk() ? AskDatabaseExists(MessageOwner(), name) : IDC_EXISTS_OVERWRITE;
    if (answer == IDC_EXISTS_OVERWRITE)
        return Overwrite(database, name);
    if (answer != IDOK)
        return Target::Skip;
    const WCHAR* newName = AskNewDatabaseName(MessageOwner(), name);
    if (!newName)
        return Target::Skip;
    CopyText(name, newName);
    return Target::Create;
}

RestoreEngine::Target RestoreEngine::Overwrite(DbHandle& database, const WCHAR* name) {
    {
        const QuietReports quiet(database);
        if (database.DeleteDatabase(name))
            return Target::Create;
    }
    // It is open elsewhere. Where nobody can be asked it is left alone, and so is what follows: each further
    // turn would come back to it and ask nobody again.
    if (!RunsUnattended()) {
        constexpr UINT kStyle = MB_YESNOCANCEL | MB_ICONEXCLAMATION;
        const int answer = MessageFromString(MessageOwner(), IDS_CONFIRM_RESTORE_IN_USE, name, kStyle);
        if (answer != IDYES)
            return answer == IDNO ? Target::Skip : Target::Stop;
    }
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return Target::Stop;
    database.DeleteAllRecords();
    return Target::Reuse;
}

bool RestoreEngine::RestoreRecords(DbHandle& database, const CEDBASEINFO& info, const WCHAR* target) {
    RecordBuffer record;
    RecordBuffer stored;
    bool proceed = true;
    for (DWORD i = 0; proceed && i < info.wNumRecords; ++i) {
        proceed = ProgressStep(IDS_RESTORING_RECORD, info) && ReadRecord(target, &record, &stored) &&
                  database.WriteRecordFromStorage(0, &record);
    }
    return proceed;
}

// Reads the next record. `stored` holds the compressed bytes meanwhile; both blocks are used again for the
// records that follow.
bool RestoreEngine::ReadRecord(const WCHAR* target, RecordBuffer* record, RecordBuffer* stored) {
    RecordHeader recordHeader;
    const bool headerWhole = BytesLeftInEntry() >= sizeof recordHeader &&
                             Read(&recordHeader, sizeof recordHeader) == sizeof recordHeader;
    if (!headerWhole || recordHeader.propCount > 0xFFFF || recordHeader.length > BytesLeftInEntry()) {
        ReportFailure(IDS_ARCHIVE_CORRUPTED, target);
        return false;
    }
    if (!ReadData(target, recordHeader.length, header.compressed ? stored : record))
        return false;
    record->propCount = static_cast<WORD>(recordHeader.propCount);
    record->size = recordHeader.length;
    return !header.compressed || ExpandRecord(*stored, recordHeader.length, record);
}

// Memory grows with the bytes that arrive, and not with the length that the file declares.
bool RestoreEngine::ReadData(const WCHAR* target, DWORD length, RecordBuffer* read) {
    BeforeStep(length);
    constexpr DWORD kFirstPiece = 64 * 1024;
    DWORD done = 0;
    do {
        const DWORD piece = std::min(length - done, std::max(done, kFirstPiece));
        if (!MakeRoom(read, done + piece)) {
            ReportFailure(IDS_RESTORE_NO_MEMORY, target);
            return false;
        }
        if (Read(read->data + done, piece) != piece) {
            ReportFailure(IDS_ARCHIVE_CORRUPTED, target);
            return false;
        }
        done += piece;
    } while (done < length);
    return true;
}

bool RestoreEngine::ExpandRecord(const RecordBuffer& stored, DWORD length, RecordBuffer* record) {
    if (!codec->Expand(stored.data, length, kMaxRecordSize) || !MakeRoom(record, codec->OutputLength())) {
        ReportOutOfMemory();
        return false;
    }
    record->size = codec->OutputLength();
    std::memcpy(record->data, codec->Output(), record->size);
    return true;
}
