// The process's one open store, and how it is changed.
#pragma once

#include <chrono>

#include "platform/base/clock.h"
#include "platform/errors.h"
#include "platform/storage/catalogue.h"
#include "platform/storage/lockfile.h"
#include "platform/storage/sqlite.h"
#include "platform/storage/waiting.h"

namespace storage {

class Store {
public:
    Store() : catalogue(connection) {}
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    Connection connection;
    LockFile locks;
    Catalogue catalogue;
    std::string path; // of the file itself, behind any symbolic links
    std::string folder;
    std::string logPath;
    DWORD readOnlyError = ERROR_SUCCESS; // why nothing can be written, when nothing can
    std::uint64_t epoch =
        0; // moves on whenever another process may have changed something; never comes again

    // Drops what is cached when another process wrote. To be called before anything cached is looked at.
    void Refresh();
    // Sees to it that the lock file is the one that other processes meet at. False with the last error set.
    bool KeepLocks();
    // The same, but looks only now and then.
    bool KeepLocksAtTimes();
    // An identifier that was never used. Within a write transaction. 0 with the last error set.
    // Whatever is made later, in any process, gets a greater one.
    CEOID NewIdentifier();
    // What was committed outlives a power cut when it returns. False with the last error set; nothing can be
    // written from then on, for nobody could say what would be kept.
    bool Sync();
    bool IsUnsynced() const { return unsynced; }
    // To be called before a read when more are likely to follow: many at a stretch cost less as one. They see
    // the store as it was at the first of them, until this process writes, another one has written, or they
    // end.
    void BeginReading();
    void EndReading();
    // Brings the log into the file and empties it, which leaves its room on the disk to others.
    void EmptyLog();
    // Whether opening it again may give a store that can be written: the disk may have room now, or nobody
    // may be writing any more.
    bool IsWorthReopening() const;
    // Runs what follows a commit but may be left undone. When there is no memory for it the caches, which it
    // was to bring up to date, are dropped.
    template <typename Step>
    void AfterCommit(Step step) {
        try {
            step();
        } catch (const std::bad_alloc&) {
            ForgetCached();
        }
    }

private:
    friend class WriteTransaction;
    friend class RoomMaker;

    void ForgetCached();
    bool ReserveGrowth();

    std::uint64_t knownCount = 1; // the count of changes under which the caches hold; odd for never
    std::uint64_t nextIdentifier = 0;
    std::uint64_t endIdentifier = 0;
    std::uint64_t blockSize = 1;
    std::int64_t reservedPages = 0; // of the file, for which there is room on the disk
    bool mayGrow = true;            // the file; its log always may
    bool unsynced = false;
    bool reading = false;
    int readsSinceWrite = 0;
    bool folderSynced = false;
    std::chrono::milliseconds locksSeen{};
    Waiting waiting;

    friend int WaitForWriter(void* store, int attempt);
};

// For SQLite's busy handler: naps, and returns 0 when it is time to give up waiting for another writer.
int WaitForWriter(void* store, int attempt);

// One step, of which all takes effect or nothing. Waits for other writers. What was done is taken back unless
// Commit returns true.
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
    std::uint64_t count = 0;
};

// Makes room for a step that failed on a full disk: by emptying the log, then by lending the log the room
// that is set aside, as long as the file itself need not grow.
class RoomMaker {
public:
    explicit RoomMaker(Store& store) : store(store) {}
    RoomMaker(const RoomMaker&) = delete;
    RoomMaker& operator=(const RoomMaker&) = delete;
    ~RoomMaker();

    // Whether the step that failed with the last error is worth another try.
    bool Make();

private:
    Store& store;
    bool logEmptied = false;
    bool gaveRoomBack = false;
};

// Runs a step in a transaction of its own, and again when the disk was full and room could be made. The step
// returns false with the last error set; so does this.
template <typename Step>
bool InTransaction(Store& store, Step step) {
    RoomMaker room(store);
    do {
        WriteTransaction transaction(store);
        if (transaction.Begun() && step() && transaction.Commit())
            return true;
    } while (room.Make());
    return false;
}

// Opens the device's store on first use, and makes it when there is none. Null with the last error set; the
// next call tries again.
Store* TheStore();
// Closes it, so that the next use opens the device that is then chosen. No database may be open.
void CloseStore();
// Null when it is not open now; never opens it, refreshes nothing.
Store* StoreIfOpen();

} // namespace storage
