#include "platform/storage/deletion.h"

#include <algorithm>
#include <vector>

#include "platform/storage/opendatabase.h"

namespace storage {

namespace {

// The databases that own records or sort keys but are not there. False with the last error set.
bool FindLeftovers(Store& store, std::vector<CEOID>& leftovers) {
    static_assert(CEDB_MAXSORTORDER == 4);
    Statement select(
        store.connection,
        "WITH RECURSIVE "
        "owners(oid) AS (SELECT min(id) >> 32 FROM records UNION ALL "
        "SELECT (SELECT min(id) >> 32 FROM records WHERE id > (oid << 32 | 0xFFFFFFFF)) FROM owners "
        "WHERE oid IS NOT NULL), "
        "sorted(oid) AS (SELECT min(place) / 4 FROM sortkeys UNION ALL "
        "SELECT (SELECT min(place) / 4 FROM sortkeys WHERE place >= 4 * oid + 4) FROM sorted "
        "WHERE oid IS NOT NULL) "
        "SELECT oid FROM (SELECT oid & 0xFFFFFFFF AS oid FROM owners WHERE oid IS NOT NULL UNION "
        "SELECT oid FROM sorted WHERE oid BETWEEN 0 AND 0xFFFFFFFF) "
        "WHERE oid NOT IN (SELECT oid FROM databases)");
    while (select.Row())
        leftovers.push_back(static_cast<CEOID>(select.Number(0)));
    return !select.Failed();
}

// Deletes rows of a range in steps until none is left, in smaller ones when the disk is full: the log takes
// every page that a step touches.
bool DeleteInSteps(Store& store, const char* sql, std::int64_t first, std::int64_t last) {
    constexpr int kMostRows = 256;
    constexpr int kFewer = 8;
    int rows = kMostRows;
    int deleted = 0;
    do {
        const bool done = InTransaction(store, [&] {
            Statement remove(store.connection, sql);
            const bool removed = remove.Bind(first).Bind(last).Bind(rows).Run();
            deleted = store.connection.Changes();
            return removed;
        });
        if (!done && (GetLastError() != ERROR_DISK_FULL || rows == 1))
            return false;
        if (!done) {
            rows = std::max(1, rows / kFewer);
            deleted = rows;
        }
    } while (deleted == rows);
    return true;
}

bool DeleteContents(Store& store, CEOID database) {
    return DeleteInSteps(store,
                         "DELETE FROM records WHERE id IN (SELECT id FROM records "
                         "WHERE id >= ?1 AND id <= ?2 ORDER BY id LIMIT ?3)",
                         RecordRow(database, 0), RecordRow(database, kNoRecord)) &&
           DeleteInSteps(store,
                         "DELETE FROM sortkeys WHERE (place, key, record) IN "
                         "(SELECT place, key, record FROM sortkeys WHERE place >= ?1 AND place <= ?2 "
                         "ORDER BY place, key, record LIMIT ?3)",
                         SortOrderNumber(database, 0), SortOrderNumber(database, CEDB_MAXSORTORDER - 1));
}

} // namespace

bool DeleteSortKeys(Store& store, CEOID database) {
    Statement remove(store.connection, "DELETE FROM sortkeys WHERE place >= ?1 AND place < ?2");
    return remove.Bind(SortOrderNumber(database, 0)).Bind(SortOrderNumber(database, CEDB_MAXSORTORDER)).Run();
}

bool DeleteDatabase(Store& store, CEOID database) {
    const bool wasTidy = store.locks.IsTidy();
    store.locks.SetTidy(false);
    if (!InTransaction(store,
                       [&] { return store.catalogue.Find(database) && store.catalogue.Remove(database); }))
        return false;
    store.AfterCommit([&] {
        store.catalogue.Forget(database);
        if (DeleteContents(store, database) && wasTidy)
            store.locks.SetTidy(true);
    });
    return store.Sync();
}

namespace {

// Made when first needed: a store of an earlier version has no such table.
constexpr const char* kMakeUnfinished = "CREATE TABLE IF NOT EXISTS unfinished (oid INTEGER PRIMARY KEY)";

// False with the last error set.
bool FindUnfinished(Store& store, std::vector<CEOID>& unfinished) {
    Statement table(store.connection, "SELECT count(*) FROM sqlite_schema WHERE name = 'unfinished'");
    if (!table.Row() || table.Number(0) == 0)
        return !table.Failed();
    Statement select(store.connection, "SELECT oid FROM unfinished WHERE oid IN (SELECT oid FROM databases)");
    while (select.Row())
        unfinished.push_back(static_cast<CEOID>(select.Number(0)));
    return !select.Failed();
}

// False when one is still being made, or could not be deleted.
bool DeleteUnfinished(Store& store) {
    std::vector<CEOID> unfinished;
    bool done = FindUnfinished(store, unfinished);
    for (const CEOID database : unfinished) {
        const bool alone = store.locks.HoldAlone(database);
        done = alone && DeleteDatabase(store, database) && done;
        if (alone)
            store.locks.ReleaseAlone(database);
    }
    return done;
}

} // namespace

bool MarkUnfinished(Store& store, CEOID database) {
    if (store.connection.Execute(kMakeUnfinished) != 0)
        return false;
    Statement insert(store.connection, "INSERT INTO unfinished VALUES (?1)");
    return insert.Bind(database).Run();
}

bool FinishDatabase(Store& store, CEOID database) {
    return InTransaction(
               store,
               [&] {
                   Statement remove(store.connection, "DELETE FROM unfinished WHERE oid = ?1");
                   return remove.Bind(database).Run();
               }) &&
           store.Sync();
}

void TidyUp(Store& store) {
    std::vector<CEOID> leftovers;
    if (!store.locks.IsTidy() && FindLeftovers(store, leftovers)) {
        bool tidy = DeleteUnfinished(store);
        for (const CEOID database : leftovers)
            tidy = DeleteContents(store, database) && tidy;
        store.locks.SetTidy(tidy && store.Sync());
    }
    if (!store.locks.HasRoom())
        store.locks.SetRoomAside();
}

} // namespace storage
