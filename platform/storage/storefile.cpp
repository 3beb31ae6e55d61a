#include "platform/storage/storefile.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/outofmemory.h"
#include "platform/device.h"
#include "platform/storage/deletion.h"

namespace storage {

namespace {

constexpr std::int64_t kApplicationId = 0x53747256; // tells a store from any other database file
constexpr std::int64_t kVersion = 1;

// Text is kept as it came, lone surrogates included. A record's identifier stands in the low half of its
// row's, below its database's, so that a database's records lie together in the order in which they were
// made. The column `place` is SortOrderNumber.
constexpr const char* kCreate = R"(
PRAGMA encoding = 'UTF-16le';
PRAGMA journal_mode = WAL;
BEGIN IMMEDIATE;
CREATE TABLE identifiers (next INTEGER NOT NULL);
INSERT INTO identifiers VALUES (1);
CREATE TABLE databases (oid INTEGER PRIMARY KEY, name TEXT NOT NULL, folded TEXT NOT NULL UNIQUE,
    type INTEGER NOT NULL, records INTEGER NOT NULL, bytes INTEGER NOT NULL, modified INTEGER NOT NULL,
    sortorders BLOB NOT NULL, version INTEGER NOT NULL, deletions INTEGER NOT NULL, lastdeleted INTEGER NOT NULL);
CREATE TABLE records (id INTEGER PRIMARY KEY, properties INTEGER NOT NULL, data BLOB NOT NULL);
CREATE TABLE sortkeys (place INTEGER NOT NULL, key BLOB NOT NULL, record INTEGER NOT NULL,
    PRIMARY KEY (place, key, record)) WITHOUT ROWID;
CREATE TABLE keys (id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, name TEXT NOT NULL, folded TEXT NOT NULL,
    class TEXT NOT NULL, UNIQUE (parent, folded));
CREATE TABLE vals (key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL, type INTEGER NOT NULL,
    data BLOB NOT NULL, PRIMARY KEY (key, folded)) WITHOUT ROWID;
PRAGMA application_id = 1400140374;
PRAGMA user_version = 1;
COMMIT;
)";
static_assert(kApplicationId == 1400140374 && kVersion == 1);

// A result of SQLite.
int ReadNumber(Connection& connection, const char* sql, std::int64_t& number) {
    Statement select(connection, sql);
    if (select.Row())
        number = select.Number(0);
    return select.Failed() ? select.Result() : SQLITE_OK;
}

// A last error; ERROR_SUCCESS when the file is a store of this version. `empty` is set for a file without
// contents.
DWORD Inspect(Connection& connection, bool& empty) {
    std::int64_t tables = 0;
    std::int64_t application = 0;
    std::int64_t version = 0;
    int result = ReadNumber(connection, "SELECT count(*) FROM sqlite_schema", tables);
    if (result == SQLITE_OK)
        result = ReadNumber(connection, "PRAGMA application_id", application);
    if (result == SQLITE_OK)
        result = ReadNumber(connection, "PRAGMA user_version", version);
    empty = tables == 0 && application == 0 && version == 0;
    if (result != SQLITE_OK)
        return ErrorOf(result);
    if (empty)
        return ERROR_SUCCESS;
    if (application != kApplicationId)
        return ERROR_FILE_CORRUPT;
    return version == kVersion ? ERROR_SUCCESS : ERROR_REVISION_MISMATCH;
}

DWORD Prepare(Store& store) {
    bool empty = false;
    DWORD error = Inspect(store.connection, empty);
    if (error == ERROR_SUCCESS && empty)
        error = ErrorOf(store.connection.Execute(kCreate));
    if (error == ERROR_SUCCESS) {
        // A step survives the death of the process at once; Store::Sync makes it survive that of the host.
        error = ErrorOf(store.connection.Execute("PRAGMA synchronous = NORMAL; PRAGMA secure_delete = ON"));
    }
    if (error == ERROR_SUCCESS && store.locks.ChangeCount().load() % 2 != 0) {
        // A process died in the middle of a write. An empty one says that nobody is writing.
        const WriteTransaction nothing(store);
    }
    return error;
}

DWORD OpenWritable(Store& store) {
    // SQLite gives the files beside the store the same permissions.
    const int made = open(store.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (made >= 0)
        close(made);
    const int result = store.connection.Open(store.path, SQLITE_OPEN_READWRITE);
    if (result != SQLITE_OK)
        return ErrorOf(result);
    store.connection.SetWait(WaitForWriter, &store);
    DWORD error = Prepare(store);
    if (error == ERROR_DISK_FULL && store.locks.HasRoom()) {
        store.locks.GiveRoomBack();
        error = Prepare(store);
    }
    if (error == ERROR_SUCCESS)
        TidyUp(store);
    return error;
}

std::string AsUri(const std::string& path) {
    std::string uri = "file:";
    for (const char letter : path) {
        if (letter == '%' || letter == '?' || letter == '#') {
            constexpr char kDigits[] = "0123456789abcdef";
            uri += {'%', kDigits[static_cast<unsigned char>(letter) >> 4], kDigits[letter & 15]};
        } else {
            uri += letter;
        }
    }
    return uri;
}

bool LogHasNothing(const std::string& path) {
    struct stat log {};
    struct stat shared {};
    return (stat((path + "-wal").c_str(), &log) != 0 || log.st_size == 0) &&
           stat((path + "-shm").c_str(), &shared) != 0;
}

// For a device that cannot be written. The shared memory of a process that is writing, or has died while it
// was, tells what is in the log. A store that was closed in good order has neither, and can only be read
// without any locks: as long as it stays as it is.
DWORD OpenReadOnly(Store& store) {
    const bool unlocked = LogHasNothing(store.path);
    const int result =
        store.connection.Open(AsUri(store.path) + (unlocked ? "?immutable=1" : "?readonly_shm=1"),
                              SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    if (result != SQLITE_OK)
        return ErrorOf(result);
    store.connection.SetWait(WaitForWriter, &store);
    if (unlocked)
        store.connection.ExpectUnchanged(store.path);
    bool empty = false;
    const DWORD error = Inspect(store.connection, empty);
    // A file that is still empty is no store to read, and only a device that can be written gets one.
    return error == ERROR_SUCCESS && empty ? ERROR_ACCESS_DENIED : error;
}

// The file behind symbolic links, which may be missing. Empty when there is no end to them.
std::filesystem::path ResolveLinks(std::filesystem::path path) {
    constexpr int kMostLinks = 40;
    std::error_code error;
    for (int links = 0; links < kMostLinks; ++links) {
        if (!std::filesystem::is_symlink(path, error)) {
            const std::filesystem::path folder = std::filesystem::canonical(path.parent_path(), error);
            return error ? path : folder / path.filename();
        }
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
    }
    return {};
}

// Nobody but the owner of a device has business with it.
void MakePrivate(const std::string& file) {
    constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
    struct stat status {};
    if (stat(file.c_str(), &status) == 0 && status.st_uid == geteuid() && (status.st_mode & kOthers) != 0)
        chmod(file.c_str(), status.st_mode & S_IRWXU);
}

// Fills in where the store's files are. A last error when there is something else.
DWORD FindFiles(Store& store, const std::string& path) {
    const std::filesystem::path resolved = ResolveLinks(path);
    if (resolved.empty())
        return ERROR_ACCESS_DENIED;
    store.path = resolved.string();
    store.folder = resolved.parent_path().string();
    store.logPath = store.path + "-wal";
    struct stat status {};
    return stat(store.path.c_str(), &status) != 0 || S_ISREG(status.st_mode) ? ERROR_SUCCESS
                                                                             : ERROR_FILE_CORRUPT;
}

bool MayStillBeRead(DWORD error) {
    return error == ERROR_WRITE_PROTECT || error == ERROR_ACCESS_DENIED || error == ERROR_DISK_FULL;
}

DWORD OpenFound(Store& store) {
    DWORD error = store.locks.Open(store.path + "-lock");
    for (const char* ending : {"", "-wal", "-shm", "-lock"})
        MakePrivate(store.path + ending);
    if (error == ERROR_SUCCESS)
        error = OpenWritable(store);
    if (MayStillBeRead(error)) {
        store.readOnlyError = error;
        const DWORD second = OpenReadOnly(store);
        error = second == ERROR_ACCESS_DENIED ? error : second;
    }
    store.locks.UnlockSetup();
    return error;
}

} // namespace

bool OpenStoreFile(Store& store, const std::string& path) {
    DWORD error = FindFiles(store, path);
    if (error == ERROR_SUCCESS)
        error = OpenFound(store);
    if (error != ERROR_SUCCESS) {
        store.connection.Close();
        SetLastError(error);
    }
    return error == ERROR_SUCCESS;
}

} // namespace storage

bool OpenDeviceStore() {
    using namespace storage;
    return UnlessOutOfMemory(false, [] {
        Store* store = TheStore();
        if (!store)
            return false;
        for (const char* probe :
             {"SELECT next FROM identifiers", "SELECT max(length(name) + length(sortorders)) FROM databases",
              "SELECT max(id), max(length(data)) FROM records WHERE id < 0",
              "SELECT count(*) FROM sortkeys WHERE place < 0", "SELECT count(*) FROM keys WHERE id < 0",
              "SELECT count(*) FROM vals WHERE key < -3"}) {
            Statement reading(store->connection, probe);
            if (!reading.Row()) {
                SetLastError(reading.Failed() ? GetLastError() : ERROR_FILE_CORRUPT);
                return false;
            }
        }
        return true;
    });
}
