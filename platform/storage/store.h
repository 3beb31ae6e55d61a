// The process's one open store, and how it is changed.
#pragma once

#include "platform/errors.h"
#include "platform/storage/catalogue.h"
#include "platform/storage/lockfile.h"
#include "platform/storage/sqlite.h"

namespace storage {

class Store {
public:
    Store() : catalogue(connection) {}
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    Connection connection;
    LockFile locks;
    Catalogue catalogue;
    DWORD readOnlyError = ERROR_SUCCESS; // why nothing can be written, when nothing can
    std::uint64_t epoch = 0;             // moves on whenever another process may have changed something

    // Drops what is cached when another process wrote. To be called before anything cached is looked at.
    void Refresh();
    // An identifier that was never used. Within a write transaction. 0 with the last error set.
    // Whatever is made later, in any process, gets a greater one.
    CEOID NewIdentifier();

private:
    friend class WriteTransaction;

    void ForgetCached();

    std::uint64_t knownWord = 1; // the change word under which the caches hold; odd for never
    std::uint64_t nextIdentifier = 0;
    std::uint64_t endIdentifier = 0;
    std::uint64_t blockSize = 1;
};

// One durable step. Waits for other writers. What was done is taken back unless Commit returns true.
class WriteTransaction {
public:
    explicit WriteTransaction(Store& store);
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;
    ~WriteTransaction();

    // False when the store cannot be written, with the last error set.
    bool Begun() const { return begun; }
    // False with the last error set.
    bool Commit();

private:
    void End();

    Store& store;
    bool begun = false;
    std::uint64_t word = 0;
};

// Opens the device's store on first use, and makes it when there is none. Null with the last error set; the
// next call tries again.
Store* TheStore();
// Closes it, so that the next use opens the device that is then chosen. No database may be open.
void CloseStore();
// Null when it is not open now; never opens it, refreshes nothing.
Store* StoreIfOpen();

// The present time.
FILETIME Now();

} // namespace storage
