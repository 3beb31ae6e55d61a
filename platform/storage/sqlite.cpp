#include "platform/storage/sqlite.h"

#include <cerrno>
#include <memory>

#include "platform/errors.h"

namespace storage {

namespace {

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

bool SameTime(const timespec& one, const timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

} // namespace

DWORD ErrorOf(int result) {
    switch (result) { // where the details tell another story than the kind of result
    case SQLITE_IOERR_SHMSIZE:
    case SQLITE_IOERR_SHMMAP:
        return ERROR_DISK_FULL; // the file in which readers and writers meet cannot grow
    case SQLITE_IOERR_NOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_IOERR_SHORT_READ:
        return ERROR_FILE_CORRUPT;
    default:
        break;
    }
    switch (result & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return ERROR_SUCCESS;
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_NOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ERROR_SHARING_VIOLATION;
    case SQLITE_READONLY:
        return ERROR_WRITE_PROTECT;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return ERROR_ACCESS_DENIED;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR: // the file lacks the tables that the statement is about
    case SQLITE_MISMATCH:
    case SQLITE_CONSTRAINT:
        return ERROR_FILE_CORRUPT;
    default:
        return ERROR_GEN_FAILURE;
    }
}

int Connection::Open(const std::string& name, int flags) {
    Close();
    const int result = sqlite3_open_v2(name.c_str(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (result != SQLITE_OK) {
        const int cause = Judge(result);
        Close();
        return cause;
    }
    sqlite3_extended_result_codes(handle, 1);
    return SQLITE_OK;
}

void Connection::Close() {
    for (const auto& [sql, entry] : prepared)
        sqlite3_finalize(entry.statement);
    prepared.clear();
    sqlite3_close(handle);
    handle = nullptr;
    watched.clear();
    changed = false;
}

int Connection::Execute(const char* sql) {
    return Judge(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr));
}

int Connection::Reserve(std::int64_t bytes) {
    // The chunk size is set only now: the file would also be cut to a multiple of it, with a hole where
    // nothing was reserved.
    int chunk = 64 * 1024;
    int none = 0;
    sqlite3_int64 wanted = bytes;
    sqlite3_file_control(handle, nullptr, SQLITE_FCNTL_CHUNK_SIZE, &chunk);
    const int result = sqlite3_file_control(handle, nullptr, SQLITE_FCNTL_SIZE_HINT, &wanted);
    sqlite3_file_control(handle, nullptr, SQLITE_FCNTL_CHUNK_SIZE, &none);
    return result == SQLITE_OK ? SQLITE_OK : SQLITE_FULL;
}

void Connection::ExpectUnchanged(const std::string& path) {
    watched = path;
    expected = Look();
}

Connection::FileState Connection::Look() const {
    FileState state{};
    struct stat log {};
    stat(watched.c_str(), &state.file);
    state.logBytes = stat((watched + "-wal").c_str(), &log) == 0 ? log.st_size : 0;
    return state;
}

int Connection::Judge(int result) {
    if ((result & 0xFF) == SQLITE_CANTOPEN) {
        switch (sqlite3_system_errno(handle)) {
        case EMFILE:
        case ENFILE:
        case ENOMEM:
            return SQLITE_NOMEM;
        case ENOSPC:
        case EDQUOT:
            return SQLITE_FULL;
        case EIO:
            return SQLITE_IOERR;
        default:
            return result;
        }
    }
    if (!watched.empty() && !changed) {
        const FileState now = Look();
        changed = now.logBytes != expected.logBytes || now.file.st_ino != expected.file.st_ino ||
                  now.file.st_size != expected.file.st_size ||
                  !SameTime(now.file.st_mtim, expected.file.st_mtim);
    }
    return changed ? SQLITE_BUSY : result;
}

sqlite3_stmt* Connection::Take(const char* sql, bool*& taken, int& result) {
    const auto known = prepared.find(sql);
    if (known != prepared.end() && !known->second.taken) {
        taken = &known->second.taken;
        *taken = true;
        return known->second.statement;
    }
    sqlite3_stmt* statement = nullptr;
    result = sqlite3_prepare_v3(handle, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (result != SQLITE_OK) {
        result = Judge(result);
        return nullptr;
    }
    if (known == prepared.end()) {
        std::unique_ptr<sqlite3_stmt, Finalize> owner(statement);
        taken = &prepared.try_emplace(sqlite3_sql(statement), Prepared{statement, true}).first->second.taken;
        owner.release(); // NOLINT(bugprone-unused-return-value): the connection has it now
    }
    return statement;
}

Statement::Statement(Connection& connection, const char* sql)
    : connection(connection), statement(connection.Take(sql, taken, result)) {}

Statement::~Statement() {
    if (taken) {
        sqlite3_reset(statement);
        *taken = false;
    } else {
        sqlite3_finalize(statement);
    }
}

void Statement::NoteBinding(int bindingResult) {
    if (result == SQLITE_OK && bindingResult != SQLITE_OK)
        result = bindingResult;
}

Statement& Statement::Bind(std::int64_t value) {
    NoteBinding(sqlite3_bind_int64(statement, ++bound, value));
    return *this;
}

Statement& Statement::BindText(std::u16string_view text) {
    const void* units = text.empty() ? u"" : text.data(); // a null pointer would bind no text at all
    NoteBinding(sqlite3_bind_text16(statement, ++bound, units,
                                    static_cast<int>(text.size() * sizeof(char16_t)), SQLITE_STATIC));
    return *this;
}

Statement& Statement::BindBytes(std::string_view bytes) {
    const void* data = bytes.empty() ? "" : bytes.data();
    NoteBinding(sqlite3_bind_blob(statement, ++bound, data, static_cast<int>(bytes.size()), SQLITE_STATIC));
    return *this;
}

bool Statement::Row() {
    if (result == SQLITE_OK || result == SQLITE_ROW)
        result = connection.Judge(sqlite3_step(statement));
    if (Failed())
        SetLastError(ErrorOf(result));
    return result == SQLITE_ROW;
}

bool Statement::Run() {
    while (Row()) {
    }
    return !Failed();
}

std::u16string_view Statement::Text(int column) const {
    const void* units = sqlite3_column_text16(statement, column);
    const int bytes = sqlite3_column_bytes16(statement, column);
    return units
               ? std::u16string_view(static_cast<const char16_t*>(units), static_cast<std::size_t>(bytes) / 2)
               : std::u16string_view();
}

// Whatever a file has where bytes belong. To ask for the length must not change the value's form, or the
// bytes would be elsewhere: what is no blob becomes text of the form whose length is asked for.
std::string_view Statement::Bytes(int column) const {
    const bool isBlob = sqlite3_column_type(statement, column) == SQLITE_BLOB;
    const void* data =
        isBlob ? sqlite3_column_blob(statement, column) : sqlite3_column_text16(statement, column);
    const int bytes = sqlite3_column_bytes16(statement, column);
    return data ? std::string_view(static_cast<const char*>(data), static_cast<std::size_t>(bytes))
                : std::string_view();
}

std::size_t Statement::AppendTo(std::u16string& units, int column) const {
    const std::string_view bytes = Bytes(column);
    const std::size_t at = units.size();
    units.resize(at + (bytes.size() + 1) / 2);
    bytes.copy(reinterpret_cast<char*>(units.data() + at), bytes.size());
    return bytes.size();
}

} // namespace storage
