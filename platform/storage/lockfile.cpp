#include "platform/storage/lockfile.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/hosterror.h"
#include "platform/errors.h"
#include "platform/storage/waiting.h"

namespace storage {

namespace {

constexpr std::int64_t kFileBytes = 4096;
// What SQLite's shared memory takes, and some twenty pages of a log.
constexpr std::int64_t kRoomBytes = 128 * 1024;
// Locks lie where there is nothing to read: a byte for the set-up, then one for each identifier.
constexpr std::int64_t kSetupOffset = kFileBytes;
constexpr std::int64_t kDatabaseOffset = kFileBytes + 4096;

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

bool IsTaken(int cause) {
    return cause == EAGAIN || cause == EACCES;
}

DWORD ErrorOfLock(int cause) {
    return cause == 0 ? ERROR_SUCCESS : IsTaken(cause) ? ERROR_SHARING_VIOLATION : ERROR_GEN_FAILURE;
}

DWORD ErrorOfOpening(int cause) {
    if (cause == EROFS || cause == EACCES || cause == EPERM)
        return ERROR_WRITE_PROTECT;
    const DWORD error = ErrorOfHost(cause);
    const bool tellsWhy =
        error == ERROR_DISK_FULL || error == ERROR_NOT_ENOUGH_MEMORY || error == ERROR_GEN_FAILURE;
    // Not ERROR_FILE_NOT_FOUND, which would say that a database is missing.
    return tellsWhy ? error : ERROR_ACCESS_DENIED;
}

// Real bytes, since a hole that cannot be filled later would kill the process that touches it.
DWORD Fill(int file, const struct stat& status) {
    if (!S_ISREG(status.st_mode))
        return ERROR_FILE_CORRUPT;
    if (status.st_size >= kFileBytes)
        return ERROR_SUCCESS;
    const char zeros[kFileBytes] = {};
    const ssize_t missing = static_cast<ssize_t>(kFileBytes - status.st_size);
    errno = ENOSPC; // for a write that is cut short
    return pwrite(file, zeros, static_cast<std::size_t>(missing), status.st_size) == missing
               ? ERROR_SUCCESS
               : ErrorOfOpening(errno);
}

// Tells one run of the host from all others: what the file said before a power cut may be older than the
// store.
std::uint32_t ThisBoot() {
    static const std::uint32_t boot = [] {
        std::string id;
        std::ifstream("/proc/sys/kernel/random/boot_id") >> id;
        return static_cast<std::uint32_t>(std::hash<std::string>()(id)) | 1U;
    }();
    return boot;
}

} // namespace

DWORD LockFile::Open(const std::string& lockPath) {
    path = lockPath;
    file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file < 0)
        return ErrorOfOpening(errno);
    DWORD error = LockSetup();
    if (error == ERROR_SUCCESS)
        error = Map();
    if (error != ERROR_SUCCESS)
        Close();
    return error;
}

DWORD LockFile::Map() {
    struct stat status {};
    if (fstat(file, &status) != 0)
        return ERROR_GEN_FAILURE;
    fileNumber = status.st_ino;
    fileSystem = status.st_dev;
    const DWORD error = Fill(file, status);
    if (error != ERROR_SUCCESS)
        return error;
    void* mapped = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped == MAP_FAILED)
        return ErrorOfOpening(errno);
    shared = static_cast<Shared*>(mapped);
    shared->setupHolder = getpid();
    return ERROR_SUCCESS;
}

void LockFile::Close() {
    if (shared != &unshared) {
        munmap(shared, sizeof(Shared));
        shared = &unshared;
    }
    if (file >= 0) {
        close(file);
        file = -1;
    }
    held.clear();
}

bool LockFile::IsCurrent() const {
    struct stat named {};
    return file < 0 ||
           (stat(path.c_str(), &named) == 0 && named.st_ino == fileNumber && named.st_dev == fileSystem);
}

bool LockFile::Reopen() {
    std::unordered_map<CEOID, int> kept;
    kept.swap(held);
    Close();
    DWORD error = Open(path);
    for (auto each = kept.begin(); error == ERROR_SUCCESS && each != kept.end(); ++each)
        error = ErrorOfLock(TryLock(F_RDLCK, kDatabaseOffset + each->first));
    held.swap(kept);
    UnlockSetup();
    if (error != ERROR_SUCCESS)
        SetLastError(error);
    return error == ERROR_SUCCESS;
}

int LockFile::TryLock(short type, std::int64_t offset) {
    if (file < 0)
        return 0;
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = offset;
    lock.l_len = 1;
    int result;
    do {
        // Locks of the open file, not of the process: closing some other descriptor must not drop them.
        result = fcntl(file, F_OFD_SETLK, &lock);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

// Read, not mapped: the file may still be empty.
int LockFile::SetupHolder() const {
    std::int32_t holder = 0;
    const ssize_t bytes = pread(file, &holder, sizeof(holder), offsetof(Shared, setupHolder));
    return bytes == sizeof(holder) ? holder : 0;
}

DWORD LockFile::LockSetup() {
    Waiting waiting;
    while (true) {
        const int cause = TryLock(F_WRLCK, kSetupOffset);
        if (!IsTaken(cause) || !waiting.Nap(SetupHolder()))
            return ErrorOfLock(cause);
    }
}

void LockFile::UnlockSetup() {
    shared->setupHolder = 0;
    TryLock(F_UNLCK, kSetupOffset);
}

bool LockFile::HasRoom() const {
    struct stat status {};
    return file >= 0 && fstat(file, &status) == 0 && status.st_size >= kFileBytes + kRoomBytes;
}

void LockFile::SetRoomAside() {
    if (file >= 0 && posix_fallocate(file, kFileBytes, kRoomBytes) != 0)
        GiveRoomBack(); // what was had of it
}

void LockFile::GiveRoomBack() {
    [[maybe_unused]] const int result = ftruncate(file, kFileBytes);
}

bool LockFile::IsTidy() const {
    return shared->tidy.load() == ThisBoot();
}

void LockFile::SetTidy(bool tidy) {
    shared->tidy = tidy ? ThisBoot() : 0;
}

bool LockFile::Hold(CEOID database) {
    int& count = held[database];
    const int cause = count == 0 ? TryLock(F_RDLCK, kDatabaseOffset + database) : 0;
    if (cause != 0) {
        held.erase(database);
        SetLastError(ErrorOfLock(cause));
        return false;
    }
    ++count;
    return true;
}

void LockFile::Release(CEOID database) {
    const auto found = held.find(database);
    if (found != held.end() && --found->second == 0) {
        held.erase(found);
        TryLock(F_UNLCK, kDatabaseOffset + database);
    }
}

bool LockFile::HoldAlone(CEOID database) {
    const int cause = Holds(database) ? EAGAIN : TryLock(F_WRLCK, kDatabaseOffset + database);
    if (cause != 0)
        SetLastError(ErrorOfLock(cause));
    return cause == 0;
}

void LockFile::ReleaseAlone(CEOID database) {
    TryLock(F_UNLCK, kDatabaseOffset + database);
}

} // namespace storage
