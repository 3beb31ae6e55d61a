#include "platform/storage/deletion.h"

#include <vector>

#include "platform/storage/opendatabase.h"

namespace storage {

namespace {

bool DeleteContents(Store& store, CEOID database) {
    Statement records(store.connection, "DELETE FROM records WHERE id >= ?1 AND id <= ?2");
    records.Bind(RecordRow(database, 0)).Bind(RecordRow(database, 0xFFFFFFFF));
    return records.Run() && DeleteSortKeys(store, database);
}

bool DeleteRows(Store& store, CEOID database, bool contentsToo) {
    WriteTransaction transaction(store);
    if (!transaction.Begun() || !store.catalogue.Find(database))
        return false;
    if ((contentsToo && !DeleteContents(store, database)) || !store.catalogue.Remove(database) ||
        !transaction.Commit())
        return false;
    store.catalogue.Forget(database);
    return true;
}

// The databases that own records but are not there.
std::vector<CEOID> FindLeftovers(Store& store) {
    std::vector<CEOID> leftovers;
    CEOID previous = 0;
    while (true) {
        Statement select(store.connection, "SELECT id >> 32 FROM records WHERE id > ?1 ORDER BY id LIMIT 1");
        if (!select.Bind(RecordRow(previous, 0xFFFFFFFF)).Row())
            return leftovers;
        previous = static_cast<CEOID>(select.Number(0));
        if (!store.catalogue.Find(previous) && GetLastError() == ERROR_FILE_NOT_FOUND)
            leftovers.push_back(previous);
    }
}

} // namespace

bool DeleteSortKeys(Store& store, CEOID database) {
    Statement remove(store.connection, "DELETE FROM sortkeys WHERE place >= ?1 AND place < ?2");
    const std::int64_t first = std::int64_t{database} * CEDB_MAXSORTORDER;
    return remove.Bind(first).Bind(first + CEDB_MAXSORTORDER).Run();
}

bool DeleteDatabase(Store& store, CEOID database) {
    if (DeleteRows(store, database, true))
        return true;
    if (GetLastError() != ERROR_DISK_FULL)
        return false;
    // The log of a deletion grows with what is deleted. Taking the database alone out is a matter of a few
    // pages; its records, whose identifiers never come back, stay unseen until there is room to delete them.
    store.locks.GiveRoomBack();
    return DeleteRows(store, database, false);
}

void TidyUp(Store& store) {
    for (const CEOID database : FindLeftovers(store)) {
        WriteTransaction transaction(store);
        if (!transaction.Begun() || !DeleteContents(store, database) || !transaction.Commit())
            return;
    }
    store.locks.SetRoomAside();
}

} // namespace storage
