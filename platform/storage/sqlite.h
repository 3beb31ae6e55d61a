// SQLite as the store uses it: one connection, statements prepared once, results as last errors.
#pragma once

#include <sqlite3.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
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
    // What to do when another process has the lock: `wait` is called with the number of calls before, and
    // returns 0 to give up.
    void SetWait(int (*wait)(void*, int), void* context) { sqlite3_busy_handler(handle, wait, context); }
    // Sees to it that the disk has room for a file of so many bytes. A result of SQLite.
    int Reserve(std::int64_t bytes);
    // For a file that was opened without locks: from now on rows are refused with SQLITE_BUSY once anybody
    // has written to it.
    void ExpectUnchanged(const std::string& path);
    bool FoundChanged() const { return changed; }
    int Changes() const { return sqlite3_changes(handle); }
    std::int64_t LastInserted() const { return sqlite3_last_insert_rowid(handle); }

private:
    friend class Statement;

    struct Prepared {
        sqlite3_stmt* statement;
        bool taken;
    };
    struct FileState {
        struct stat file;
        off_t logBytes;
    };

    // The statement for a text, prepared on first use; null, with `result` of SQLite, when it does not fit
    // the file or the file cannot be read. `taken` is to be reset when it has run; when it is null the text
    // is running already, and the statement is to be finalized instead.
    sqlite3_stmt* Take(const char* sql, bool*& taken, int& result);
    // What a step's result means, now that it is known why it failed and whether the file has changed.
    int Judge(int result);
    FileState Look() const;

    sqlite3* handle = nullptr;
    std::unordered_map<std::string_view, Prepared> prepared; // by the text that SQLite keeps
    std::string watched;                                     // the path of a file that must not change
    FileState expected = {};
    bool changed = false;
};

// One run of a statement; values are bound in the order of ?1, ?2 and so on, and what they refer to must
// outlive the run. The same text may run more than once at a time.
class Statement {
public:
    Statement(Connection& connection, const char* sql);
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
    // Appends a column's text, or its bytes in whole units (the last one filled up with a zero). Returns the
    // bytes that it has.
    std::size_t AppendTo(std::u16string& units, int column) const;

private:
    void NoteBinding(int bindingResult);

    Connection& connection;
    bool* taken = nullptr;
    int bound = 0;
    int result = SQLITE_OK;
    sqlite3_stmt* statement;
};

} // namespace storage
