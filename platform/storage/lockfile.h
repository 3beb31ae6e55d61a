// The small file beside the store by which processes agree: who has a database open, and whether anything
// changed.
#pragma once

#include <atomic>
#include <string>
#include <unordered_map>

#include "platform/objectstore.h"

namespace storage {

class LockFile {
public:
    LockFile() = default;
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    ~LockFile() { Close(); }

    // False with errno when the file cannot be made or written. Without it nothing is locked, and the change
    // word says that everything may have changed.
    bool Open(const std::string& path);
    void Close();

    // Only one process at a time makes or upgrades a store.
    void LockSetup();
    void UnlockSetup();

    // An open database is held shared, once for each of its handles. The kernel lets go when the process
    // dies. False when another process is about to delete it.
    bool Hold(CEOID database);
    void Release(CEOID database);
    // For deleting: false when any process, this one included, holds the database.
    bool HoldAlone(CEOID database);
    void ReleaseAlone(CEOID database);

    // Room on the disk that the file keeps for a deletion on a full one. Setting it aside needs the setup
    // lock, and fails silently when there is none.
    bool HasRoom() const;
    void SetRoomAside();
    void GiveRoomBack();

    // Counted on by whoever writes: odd from before a commit until after it. While it is even and stays the
    // same, nothing in the store has changed.
    std::atomic<std::uint64_t>& Word() { return word ? *word : unshared; }

private:
    bool SetLock(short type, std::int64_t offset, bool wait);

    int file = -1;
    std::atomic<std::uint64_t>* word = nullptr;
    std::atomic<std::uint64_t> unshared{1};
    std::unordered_map<CEOID, int> held;
};

} // namespace storage
