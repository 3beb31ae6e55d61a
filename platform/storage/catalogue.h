// What the store knows of each database, kept in memory as long as no other process writes.
#pragma once

#include <algorithm>
#include <string>
#include <unordered_map>

#include "platform/objectstore.h"
#include "platform/storage/sqlite.h"

namespace storage {

constexpr DWORD kAllInfoValid = CEDB_VALIDMODTIME | CEDB_VALIDNAME | CEDB_VALIDTYPE | CEDB_VALIDSORTSPEC;

struct DatabaseRow {
    CEOID oid = 0;
    CEDBASEINFO info = {};
    std::uint64_t bytes = 0;    // of all records in storage form, beyond what info.dwSize can say
    std::int64_t version = 0;   // counts every change of its records
    std::int64_t deletions = 0; // counts deleted records
    CEOID lastDeleted = 0;

    std::u16string_view Name() const { return info.szDbaseName; }
    void SetBytes(std::uint64_t all) {
        bytes = all;
        info.dwSize = static_cast<DWORD>(std::min<std::uint64_t>(all, 0xFFFFFFFF));
    }
};

class Catalogue {
public:
    explicit Catalogue(Connection& connection) : connection(connection) {}

    // Null with ERROR_FILE_NOT_FOUND when there is no such database, or with the store's error. The row stays
    // valid until the cache is cleared.
    const DatabaseRow* Find(CEOID oid);
    const DatabaseRow* FindByName(std::u16string_view name);

    // Within a write transaction. False with the last error set; the transaction is then to be rolled back.
    bool Insert(const DatabaseRow& row);
    // Writes what a change of records touches: counts, bytes, time, version and deletions. The cache keeps
    // the old row until the transaction is through.
    bool StoreState(const DatabaseRow& row);
    // Writes name, type and sort orders too.
    bool StoreAll(const DatabaseRow& row);
    bool Remove(CEOID oid);

    void Clear();
    // Replaces a cached row once what was written is committed.
    void Keep(const DatabaseRow& row);
    void Forget(CEOID oid);

private:
    const DatabaseRow* Load(Statement& select);

    Connection& connection;
    std::unordered_map<CEOID, DatabaseRow> rows;
    std::unordered_map<std::u16string, CEOID> names; // folded
};

} // namespace storage
