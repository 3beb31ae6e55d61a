#include "platform/storage/watch.h"

#include <algorithm>

#include "platform/base/outofmemory.h"
#include "platform/storage/opendatabase.h"

namespace {
NotifySink notifySink = nullptr;
}

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
