#include "platform/storage/store.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/outofmemory.h"
#include "platform/device.h"
#include "platform/storage/opendatabase.h"
#include "platform/storage/registrykeys.h"
#include "platform/storage/storefile.h"

namespace storage {

namespace {

constexpr std::uint64_t kLargestBlock = 64;
constexpr std::uint64_t kIdentifiersEnd = 0xFFFFFFFF; // the greatest of all is never given out
constexpr std::chrono::milliseconds kLockCheckInterval{250};

std::unique_ptr<Store>& Slot() {
    // Never destroyed as an object: it is closed at exit, while everything that it uses is still there.
    static auto* slot = new std::unique_ptr<Store>;
    return *slot;
}

// 0, or the host's error.
int SyncFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return errno == ENOENT ? 0 : errno; // without a log there is nothing in it
    const int cause = fsync(file) == 0 ? 0 : errno;
    close(file);
    return cause;
}

} // namespace

int WaitForWriter(void* context, int attempt) {
    Store& store = *static_cast<Store*>(context);
    if (attempt == 0)
        store.waiting = Waiting();
    return store.waiting.Nap(store.locks.Writer().load()) ? 1 : 0;
}

void Store::Refresh() {
    const std::uint64_t count = locks.ChangeCount().load();
    if (count != knownCount || count % 2 != 0) {
        ForgetCached();
        knownCount = count;
    }
}

void Store::BeginReading() {
    // Between two writes it is not worth its while.
    constexpr int kManyReads = 16;
    if (!reading && ++readsSinceWrite > kManyReads)
        reading = Statement(connection, "BEGIN").Run();
}

void Store::EndReading() {
    if (reading)
        Statement(connection, "COMMIT").Run();
    reading = false;
    readsSinceWrite = 0;
}

void Store::ForgetCached() {
    EndReading();
    static std::uint64_t latestEpoch = 0;
    epoch = ++latestEpoch;
    catalogue.Clear();
    // Others may have taken identifiers beyond this block, and later ones must be greater.
    nextIdentifier = endIdentifier = 0;
    blockSize = 1;
}

bool Store::KeepLocks() {
    locksSeen = RoughClock();
    if (locks.IsCurrent())
        return true;
    knownCount = 1;
    ForgetCached();
    return locks.Reopen();
}

bool Store::KeepLocksAtTimes() {
    return RoughClock() - locksSeen < kLockCheckInterval || KeepLocks();
}

CEOID Store::NewIdentifier() {
    if (nextIdentifier == endIdentifier) {
        Statement select(connection, "SELECT next FROM identifiers");
        if (!select.Row()) {
            if (!select.Failed())
                SetLastError(ERROR_FILE_CORRUPT);
            return 0;
        }
        // Identifiers are set aside in blocks, so that the counter is not written with each record. The block
        // grows while this process is alone.
        const std::uint64_t next = static_cast<std::uint64_t>(std::max<std::int64_t>(select.Number(0), 1));
        const std::uint64_t end = std::min(next + blockSize, kIdentifiersEnd);
        if (next >= end) {
            SetLastError(ERROR_DISK_FULL);
            return 0;
        }
        Statement update(connection, "UPDATE identifiers SET next = ?1");
        if (!update.Bind(static_cast<std::int64_t>(end)).Run())
            return 0;
        nextIdentifier = next;
        endIdentifier = end;
        blockSize = std::min(2 * blockSize, kLargestBlock);
    }
    return static_cast<CEOID>(nextIdentifier++);
}

// The log takes new pages first and brings them into the file later. Room for them in
// the file is reserved now, or a full disk would keep the log from ever being emptied.
bool Store::ReserveGrowth() {
    Statement pages(connection, "PRAGMA page_count");
    if (!pages.Row())
        return false;
    const std::int64_t count = pages.Number(0);
    if (count <= reservedPages)
        return true;
    Statement size(connection, "PRAGMA page_size");
    struct stat file {};
    if (!size.Row())
        return false;
    const std::int64_t bytes = count * size.Number(0);
    const bool fits = stat(path.c_str(), &file) == 0 && bytes <= file.st_size;
    const int result = fits ? SQLITE_OK : mayGrow ? connection.Reserve(bytes) : SQLITE_FULL;
    if (result != SQLITE_OK) {
        SetLastError(ErrorOf(result));
        return false;
    }
    reservedPages = count; // and not what was reserved beyond: SQLite cuts that off when the log is through
    return true;
}

bool Store::Sync() {
    if (!unsynced)
        return true;
    int cause = SyncFile(logPath);
    if (cause == 0 && !folderSynced)
        cause = SyncFile(folder); // the log's name, and the store's
    if (cause != 0) {
        std::fprintf(stderr, "pocket-strandview: %s cannot be brought to the disk\n", logPath.c_str());
        readOnlyError = ERROR_GEN_FAILURE;
        SetLastError(readOnlyError);
        return false;
    }
    folderSynced = true;
    unsynced = false;
    return true;
}

void Store::EmptyLog() {
    EndReading();
    connection.Execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

bool Store::IsWorthReopening() const {
    return readOnlyError == ERROR_DISK_FULL || readOnlyError == ERROR_GEN_FAILURE ||
           connection.FoundChanged();
}

WriteTransaction::WriteTransaction(Store& store) : store(store) {
    if (store.readOnlyError != ERROR_SUCCESS) {
        SetLastError(store.readOnlyError);
        return;
    }
    store.EndReading();
    if (!store.KeepLocks() || !Statement(store.connection, "BEGIN IMMEDIATE").Run())
        return;
    begun = true;
    // Nobody else can write now: a count that is odd was left by a process that died.
    store.Refresh();
    count = (store.locks.ChangeCount().load() + 1) | 1;
    store.locks.ChangeCount().store(count);
    store.locks.Writer().store(getpid());
}

WriteTransaction::~WriteTransaction() {
    if (begun) {
        const DWORD cause = GetLastError();
        store.connection.Execute("ROLLBACK"); // fails when SQLite did so by itself
        SetLastError(cause);
        store.nextIdentifier = store.endIdentifier = 0;
        store.reservedPages = 0;
        End();
    }
}

bool WriteTransaction::Commit() {
    if (!store.ReserveGrowth() || !Statement(store.connection, "COMMIT").Run())
        return false;
    begun = false;
    store.unsynced = true;
    End();
    return true;
}

void WriteTransaction::End() {
    // Only if no other process has begun to write meanwhile: it then makes the count even itself.
    std::int32_t self = getpid();
    store.locks.Writer().compare_exchange_strong(self, 0);
    std::uint64_t expected = count;
    store.locks.ChangeCount().compare_exchange_strong(expected, count + 1);
    // What this process cached was kept up to date with its own change. If another process has already moved
    // the count on, this one will not match it.
    store.knownCount = count + 1;
}

bool RoomMaker::Make() {
    if (GetLastError() != ERROR_DISK_FULL || store.readOnlyError != ERROR_SUCCESS || gaveRoomBack)
        return false;
    if (logEmptied) {
        if (!store.locks.HasRoom())
            return false;
        store.locks.GiveRoomBack();
        gaveRoomBack = true;
        // The room is for the log alone. Overwriting what is deleted with zeros would use it up.
        store.mayGrow = false;
        store.connection.Execute("PRAGMA secure_delete = OFF");
    }
    store.EmptyLog();
    logEmptied = true;
    SetLastError(ERROR_DISK_FULL);
    return true;
}

RoomMaker::~RoomMaker() {
    if (gaveRoomBack) {
        const DWORD cause = GetLastError();
        store.mayGrow = true;
        store.connection.Execute("PRAGMA secure_delete = ON");
        store.EmptyLog();
        store.locks.SetRoomAside();
        SetLastError(cause);
    }
}

Store* TheStore() {
    std::unique_ptr<Store>& slot = Slot();
    if (slot && slot->IsWorthReopening() && OpenDatabases().empty())
        slot.reset();
    if (!slot) {
        auto store = std::make_unique<Store>();
        if (!OpenStoreFile(*store, DeviceStorePath()))
            return nullptr;
        slot = std::move(store);
        [[maybe_unused]] static const int registered = std::atexit(CloseStore);
    }
    if (!slot->KeepLocksAtTimes())
        return nullptr;
    slot->Refresh();
    return slot.get();
}

void CloseStore() {
    if (Slot())
        UnlessOutOfMemory(false, [] { return WriteGathered(*Slot(), nullptr); });
    Slot().reset();
}

Store* StoreIfOpen() {
    return Slot().get();
}

} // namespace storage
