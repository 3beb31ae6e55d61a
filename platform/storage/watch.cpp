#include "platform/storage/watch.h"

#include <algorithm>

#include "platform/base/outofmemory.h"
#include "platform/storage/opendatabase.h"

namespace {
NotifySink notifySink = nullptr;
}

namespace storage {

bool OpenDatabase::StartWatching() {
    Statement newest(store.connection, "SELECT max(id) FROM records WHERE id >= ?1 AND id <= ?2");
    if (!newest.Bind(RecordRow(database, 0)).Bind(RecordRow(database, kNoRecord)).Row())
        return false;
    newestSeen = static_cast<CEOID>(newest.Number(0));
    return true;
}

void OpenDatabase::ReportForeignChanges(void (*post)(HWND, UINT, WPARAM, LPARAM)) {
    const DatabaseRow* row = store.catalogue.Find(database);
    if (!row || row->version == watchedVersion)
        return;
    std::vector<CEOID> created;
    CEOID newest = newestSeen;
    {
        Statement newer(store.connection, "SELECT id FROM records WHERE id > ?1 AND id <= ?2 ORDER BY id");
        newer.Bind(RecordRow(database, newest)).Bind(RecordRow(database, kNoRecord));
        while (newer.Row()) {
            newest = static_cast<CEOID>(newer.Number(0));
            if (!std::binary_search(ownCreations.begin(), ownCreations.end(), newest))
                created.push_back(newest);
        }
        if (newer.Failed())
            return; // the next look may tell more
    }
    newestSeen = newest;
    const bool deleted = row->deletions - watchedDeletions > ownDeletions;
    const CEOID lastDeleted = row->lastDeleted;
    watchedVersion = row->version;
    watchedDeletions = row->deletions;
    ownCreations.clear();
    ownDeletions = 0;
    for (const CEOID record : created)
        post(notify, DB_CEOID_CREATED, record, static_cast<LPARAM>(database));
    if (deleted)
        post(notify, DB_CEOID_RECORD_DELETED, lastDeleted, static_cast<LPARAM>(database));
}

} // namespace storage

void SetNotifySink(NotifySink sink) {
    notifySink = sink;
}

bool StoreWatchWanted() {
    const auto& open = storage::OpenDatabases();
    return std::any_of(open.begin(), open.end(),
                       [](const storage::OpenDatabase* each) { return each->IsWatching(); });
}

void PollStoreChanges() {
    UnlessOutOfMemory(
        false,
        [] {
            storage::Store* store = StoreWatchWanted() ? storage::TheStore() : nullptr;
            if (!store)
                return false;
            // An editor's changes are to outlive a power cut while its database stays open, too.
            store->Sync();
            for (storage::OpenDatabase* open : storage::OpenDatabases()) {
                if (open->IsWatching())
                    open->ReportForeignChanges([](HWND window, UINT message, WPARAM record, LPARAM database) {
                        if (notifySink)
                            notifySink(window, message, record, database);
                    });
            }
            return true;
        });
}
