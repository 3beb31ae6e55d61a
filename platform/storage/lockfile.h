// The small file beside the store by which processes agree: who has a database open, and whether anything
// changed.
#pragma once

#include <atomic>
#include <string>
#include <sys/types.h>
#include <unordered_map>

#include "platform/objectstore.h"

namespace storage {

class LockFile {
public:
    LockFile() = default;
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    ~LockFile() { Close(); }

    // Opens the file, makes it when it is missing, and takes the setup lock. ERROR_SUCCESS, or the last error
    // that says why not. Without the file nothing is locked, and the count of changes says that everything
    // may have changed.
    DWORD Open(const std::string& path);
    void Close();
    // False once the file under the name is gone or another one, so that other processes no longer meet this
    // one here.
    bool IsCurrent() const;
    // Changes over to the file that is now under the name, and takes all locks that are held there, too.
    // False with the last error set.
    bool Reopen();

    // Only one process at a time makes or tidies up a store.
    void UnlockSetup();

    // An open database is held shared, once for each of its handles. The kernel lets go when the process
    // dies. False with the last error set: ERROR_SHARING_VIOLATION when another process is about to delete
    // it.
    bool Hold(CEOID database);
    void Release(CEOID database);
    bool Holds(CEOID database) const { return held.contains(database); }
    // For deleting: false with ERROR_SHARING_VIOLATION when any process, this one included, holds the
    // database, or with another last error.
    bool HoldAlone(CEOID database);
    void ReleaseAlone(CEOID database);

    // Room that the file keeps for opening the store and for its log when the disk is full.
    bool HasRoom() const;
    void SetRoomAside(); // fails silently when there is none
    void GiveRoomBack();

    // Whether the store is known to hold no rows without a database. It is not with a new file, nor after the
    // host was started anew.
    bool IsTidy() const;
    void SetTidy(bool tidy);

    // Every writer makes it odd before a commit and even after it. While it is even and stays the same,
    // nothing in the store has changed.
    std::atomic<std::uint64_t>& ChangeCount() { return shared->changes; }
    // The process that is writing, 0 for none.
    std::atomic<std::int32_t>& Writer() { return shared->writer; }

private:
    struct Shared {
        std::atomic<std::uint64_t> changes;
        std::atomic<std::int32_t> writer;
        std::atomic<std::int32_t> setupHolder;
        std::atomic<std::uint32_t> tidy;
    };

    // 0, or why the lock was not had.
    int TryLock(short type, std::int64_t offset);
    DWORD LockSetup();
    int SetupHolder() const;
    DWORD Map();

    std::string path;
    int file = -1;
    ino_t fileNumber = 0;
    dev_t fileSystem = 0;
    Shared unshared{{1}, {0}, {0}, {0}};
    Shared* shared = &unshared;
    std::unordered_map<CEOID, int> held; // handles of each open database
};

} // namespace storage
