#include "platform/storage/storefile.h"

#include <cerrno>
#include <sys/stat.h>

#include "platform/storage/deletion.h"

namespace storage {

namespace {

constexpr std::int64_t kApplicationId = 0x53747256; // tells a store from any other database file
constexpr std::int64_t kVersion = 1;

// Text is kept as it came, lone surrogates included. A record's identifier stands in the low half of its
// row's, below its database's, so that a database's records lie together in the order in which they were
// made. A sort order's place is its database's identifier times four, plus its number.
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

DWORD OpenWritable(Store& store, const std::string& path) {
    Connection& connection = store.connection;
    int result = connection.Open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (result != SQLITE_OK)
        return ErrorOf(result);
    bool empty = false;
    DWORD error = Inspect(connection, empty);
    if (error == ERROR_SUCCESS && empty) {
        result = connection.Execute(kCreate);
        error = ErrorOf(result);
    }
    if (error == ERROR_SUCCESS) {
        // Each step survives the death of the process at once, and that of the host from the next checkpoint
        // on.
        error = ErrorOf(connection.Execute("PRAGMA synchronous = NORMAL"));
    }
    if (error == ERROR_SUCCESS && store.locks.Word().load() % 2 != 0) {
        // A process died in the middle of a write. An empty one says that nobody is writing.
        const WriteTransaction nothing(store);
    }
    if (error == ERROR_SUCCESS && !store.locks.HasRoom())
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

// For a device that cannot be written. A store that was closed in good order can be read without a file
// beside it; one that was not is read together with what its last process left. An empty log is left by an
// attempt to write that a full disk stopped.
DWORD OpenReadOnly(Store& store, const std::string& path) {
    struct stat log {};
    const bool inOrder = stat((path + "-wal").c_str(), &log) != 0 || log.st_size == 0;
    const int result = store.connection.Open(AsUri(path) + (inOrder ? "?immutable=1" : ""),
                                             SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    bool empty = false;
    const DWORD error = result == SQLITE_OK ? Inspect(store.connection, empty) : ErrorOf(result);
    // A file that is still empty is no store to read, and only a device that can be written gets one.
    return error == ERROR_SUCCESS && empty ? ERROR_ACCESS_DENIED : error;
}

} // namespace

bool OpenStoreFile(Store& store, const std::string& path) {
    DWORD lockError = ERROR_SUCCESS;
    if (!store.locks.Open(path + "-lock")) {
        lockError = errno == ENOSPC                     ? ERROR_DISK_FULL
                    : errno == EROFS || errno == EACCES ? ERROR_WRITE_PROTECT
                                                        : ERROR_ACCESS_DENIED;
        store.readOnlyError = lockError;
    }
    store.locks.LockSetup();
    DWORD error = lockError == ERROR_SUCCESS ? OpenWritable(store, path) : lockError;
    if (error == ERROR_WRITE_PROTECT || error == ERROR_ACCESS_DENIED || error == ERROR_DISK_FULL) {
        store.readOnlyError = error;
        const DWORD second = OpenReadOnly(store, path);
        error = second == ERROR_ACCESS_DENIED ? error : second;
    }
    store.locks.UnlockSetup();
    if (error != ERROR_SUCCESS) {
        store.connection.Close();
        SetLastError(error);
    }
    return error == ERROR_SUCCESS;
}

} // namespace storage
