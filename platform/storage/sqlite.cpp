#include "platform/storage/sqlite.h"

#include <ctime>

#include "platform/errors.h"

namespace storage {

namespace {

// Writers wait for each other in short naps. Only one that holds the store for minutes is given up on.
int Wait(void*, int attempt) {
    constexpr int kShortNaps = 100;
    constexpr long kShortNap = 200'000; // nanoseconds
    constexpr long kLongNap = 5'000'000;
    constexpr int kMostNaps = 60'000; // five minutes
    const timespec nap{0, attempt < kShortNaps ? kShortNap : kLongNap};
    nanosleep(&nap, nullptr);
    return attempt < kMostNaps;
}

} // namespace

DWORD ErrorOf(int result) {
    if (result == SQLITE_IOERR_SHMSIZE || result == SQLITE_IOERR_SHMMAP) {
        return ERROR_DISK_FULL; // the file beside the store that SQLite's readers and writers meet in cannot
                                // grow
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
        Close();
        return result;
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_handler(handle, Wait, nullptr);
    return SQLITE_OK;
}

void Connection::Close() {
    for (const auto& [sql, statement] : prepared)
        sqlite3_finalize(statement);
    prepared.clear();
    sqlite3_close(handle);
    handle = nullptr;
}

int Connection::Execute(const char* sql) {
    return sqlite3_exec(handle, sql, nullptr, nullptr, nullptr);
}

sqlite3_stmt* Connection::Prepared(const char* sql) {
    const auto known = prepared.find(sql);
    if (known != prepared.end())
        return known->second;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(handle, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK)
        return nullptr;
    prepared.emplace(sql, statement);
    return statement;
}

Statement::~Statement() {
    sqlite3_reset(statement);
}

Statement& Statement::Bind(std::int64_t value) {
    sqlite3_bind_int64(statement, ++bound, value);
    return *this;
}

Statement& Statement::BindText(std::u16string_view text) {
    const void* units = text.empty() ? u"" : text.data(); // a null pointer would bind no text at all
    sqlite3_bind_text16(statement, ++bound, units, static_cast<int>(text.size() * sizeof(char16_t)),
                        SQLITE_STATIC);
    return *this;
}

Statement& Statement::BindBytes(std::string_view bytes) {
    const void* data = bytes.empty() ? "" : bytes.data();
    sqlite3_bind_blob(statement, ++bound, data, static_cast<int>(bytes.size()), SQLITE_STATIC);
    return *this;
}

bool Statement::Row() {
    if (statement)
        result = sqlite3_step(statement);
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

std::string_view Statement::Bytes(int column) const {
    const void* data = sqlite3_column_blob(statement, column);
    const int bytes = sqlite3_column_bytes(statement, column);
    return data ? std::string_view(static_cast<const char*>(data), static_cast<std::size_t>(bytes))
                : std::string_view();
}

} // namespace storage
