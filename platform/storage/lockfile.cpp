#include "platform/storage/lockfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace storage {

namespace {

constexpr std::int64_t kFileBytes = 4096;
constexpr std::int64_t kRoomBytes = 64 * 1024; // some fifteen pages of a log
// Locks lie where there is nothing to read: a byte for the set-up, then one for each identifier.
constexpr std::int64_t kSetupOffset = kFileBytes;
constexpr std::int64_t kDatabaseOffset = kFileBytes + 4096;

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

// Real bytes, since a hole that cannot be filled later would kill the process that touches it.
bool Fill(int file) {
    struct stat status {};
    if (fstat(file, &status) != 0)
        return false;
    if (status.st_size >= kFileBytes)
        return true;
    const char zeros[kFileBytes] = {};
    const ssize_t missing = static_cast<ssize_t>(kFileBytes - status.st_size);
    return pwrite(file, zeros, static_cast<std::size_t>(missing), status.st_size) == missing;
}

} // namespace

bool LockFile::Open(const std::string& path) {
    file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0)
        return false;
    SetLock(F_WRLCK, kSetupOffset, true);
    const bool filled = Fill(file);
    SetLock(F_UNLCK, kSetupOffset, false);
    void* mapped =
        filled ? mmap(nullptr, sizeof(*word), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0) : MAP_FAILED;
    if (mapped == MAP_FAILED) {
        const int cause = errno;
        Close();
        errno = cause;
        return false;
    }
    word = static_cast<std::atomic<std::uint64_t>*>(mapped);
    return true;
}

void LockFile::Close() {
    if (word) {
        munmap(word, sizeof(*word));
        word = nullptr;
    }
    if (file >= 0) {
        close(file);
        file = -1;
    }
    held.clear();
}

bool LockFile::SetLock(short type, std::int64_t offset, bool wait) {
    if (file < 0)
        return true;
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = offset;
    lock.l_len = 1;
    int result;
    do {
        // Locks of the open file, not of the process: closing some other descriptor must not drop them.
        result = fcntl(file, wait ? F_OFD_SETLKW : F_OFD_SETLK, &lock);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

void LockFile::LockSetup() {
    SetLock(F_WRLCK, kSetupOffset, true);
}

void LockFile::UnlockSetup() {
    SetLock(F_UNLCK, kSetupOffset, false);
}

bool LockFile::HasRoom() const {
    struct stat status {};
    return file >= 0 && fstat(file, &status) == 0 && status.st_size >= kFileBytes + kRoomBytes;
}

void LockFile::SetRoomAside() {
    if (posix_fallocate(file, kFileBytes, kRoomBytes) != 0)
        GiveRoomBack(); // what was had of it
}

void LockFile::GiveRoomBack() {
    [[maybe_unused]] const int result = ftruncate(file, kFileBytes);
}

bool LockFile::Hold(CEOID database) {
    int& count = held[database];
    if (count == 0 && !SetLock(F_RDLCK, kDatabaseOffset + database, false)) {
        held.erase(database);
        return false;
    }
    ++count;
    return true;
}

void LockFile::Release(CEOID database) {
    const auto found = held.find(database);
    if (found != held.end() && --found->second == 0) {
        held.erase(found);
        SetLock(F_UNLCK, kDatabaseOffset + database, false);
    }
}

bool LockFile::HoldAlone(CEOID database) {
    return !held.contains(database) && SetLock(F_WRLCK, kDatabaseOffset + database, false);
}

void LockFile::ReleaseAlone(CEOID database) {
    SetLock(F_UNLCK, kDatabaseOffset + database, false);
}

} // namespace storage
