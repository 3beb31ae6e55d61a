// SQLite as the store uses it: one connection, statements prepared once, results as last errors.
#pragma once

#include <sqlite3.h>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/types.h"

namespace storage {

// The last error that stands for a result of SQLite; ERROR_SUCCESS for those that are none.
DWORD ErrorOf(int result);

class Connection {
public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { Close(); }

    // `flags` as SQLite takes them. A result of SQLite.
    int Open(const std::string& name, int flags);
    void Close();
    // Runs statements that yield nothing. A result of SQLite.
    int Execute(const char* sql);
    // The statement for a literal, which is told by its address. Null when it does not fit the file, or when
    // the file cannot be read; Result tells.
    sqlite3_stmt* Prepared(const char* sql);
    // Of the latest call; a result of SQLite.
    int Result() const { return sqlite3_extended_errcode(handle); }
    int Changes() const { return sqlite3_changes(handle); }

private:
    sqlite3* handle = nullptr;
    std::unordered_map<const char*, sqlite3_stmt*> prepared;
};

// One run of a statement; values are bound in the order of ?1, ?2 and so on, and what they refer to must
// outlive the run. `sql` is a literal.
class Statement {
public:
    Statement(Connection& connection, const char* sql)
        : statement(connection.Prepared(sql)), result(statement ? SQLITE_OK : connection.Result()) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    Statement& Bind(std::int64_t value);
    Statement& BindText(std::u16string_view text);
    Statement& BindBytes(std::string_view bytes);

    // True while there is a row to look at. False at the end, and after a failure with the last error set.
    bool Row();
    // Runs to the end; false after a failure with the last error set.
    bool Run();
    bool Failed() const { return result != SQLITE_ROW && result != SQLITE_DONE; }
    int Result() const { return result; }

    std::int64_t Number(int column) const { return sqlite3_column_int64(statement, column); }
    // Valid until the next row.
    std::u16string_view Text(int column) const;
    std::string_view Bytes(int column) const;

private:
    sqlite3_stmt* statement;
    int bound = 0;
    int result;
};

} // namespace storage
