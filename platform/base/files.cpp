#include "platform/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/statvfs.h>

#include "platform/base/devicefiles.h"
#include "platform/base/handles.h"
#include "platform/base/hosterror.h"
#include "platform/base/outofmemory.h"
#include "platform/base/paths.h"
#include "platform/base/replacement.h"

namespace {

constexpr mode_t kNewFileMode = 0666; // less what the user's mask takes away

class HostFile final : public KernelObject {
public:
    HostFile(Descriptor opened, DWORD access) : named(std::move(opened)), access(access) {}

    int Number() const { return replacement ? replacement->Number() : named.Number(); }
    bool Close() override {
        const int error = replacement ? replacement->PutInPlace(complete) : named.Close();
        if (error != 0)
            SetLastError(ErrorOfHost(error));
        else if (complete && !begunAnew.empty())
            ForgetKept(begunAnew);
        return error == 0;
    }

    Descriptor named;   // what stands under the name, held by its lock
    const DWORD access; // as asked for; a replacement's descriptor has both kinds
    std::unique_ptr<Replacement> replacement;
    std::string begunAnew; // the real path of a file whose contents are new; else empty
    bool complete = false; // flushed, and not written since
};

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

HANDLE FailToOpen(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

// A missing file and a missing folder on the way to it are the same to the host.
DWORD OpenError(int hostError, const std::string& path) {
    const std::size_t slash = path.rfind('/');
    struct stat status;
    if (hostError == ENOENT && slash != std::string::npos && slash != 0 &&
        stat(path.substr(0, slash).c_str(), &status) != 0)
        return ERROR_PATH_NOT_FOUND;
    return ErrorOfHost(hostError);
}

int OpenFlags(DWORD access, DWORD disposition) {
    // Not blocking: a pipe without a peer must not hold the program up, it is turned down afterwards.
    int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    flags |= !(access & GENERIC_WRITE) ? O_RDONLY : access & GENERIC_READ ? O_RDWR : O_WRONLY;
    flags |= disposition == CREATE_ALWAYS ? O_CREAT : 0;
    return flags;
}

// Takes an opened file for its opener. Returns the host's error; `gone` tells that the path leads to another
// file meanwhile, or to none, so that it has to be opened again.
int TakeFile(int descriptor, const std::string& path, bool shared, struct stat& status, bool& gone) {
    if (fstat(descriptor, &status) != 0)
        return errno;
    if (S_ISCHR(status.st_mode))
        return 0; // the host's devices are never owned by one
    if (!S_ISREG(status.st_mode))
        return EISDIR;
    // A file system without locks leaves its files unprotected rather than unreachable.
    if (flock(descriptor, (shared ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return EWOULDBLOCK;
    struct stat present;
    gone = stat(path.c_str(), &present) != 0 || present.st_dev != status.st_dev ||
           present.st_ino != status.st_ino;
    return fstat(descriptor, &status) != 0 ? errno : 0;
}

// Begins a file's contents anew, beside those it has where the host allows it. Returns the host's error.
int BeginAnew(HostFile& file, const std::string& path, const struct stat& status) {
    file.begunAnew = RealFilePath(path);
    if (!S_ISREG(status.st_mode) || (status.st_size == 0 && !HasKept(file.begunAnew)))
        return 0;
    auto replacement = std::make_unique<Replacement>();
    const int error = file.begunAnew.empty() ? EACCES : replacement->Begin(file.begunAnew, status);
    if (error == EACCES || error == EPERM || error == EROFS)
        return ftruncate(file.named.Number(), 0) == 0 ? 0 : errno; // in its place, for want of another
    if (error == 0)
        file.replacement = std::move(replacement);
    return error;
}

HANDLE OpenHostFile(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
    const bool shared = !(access & GENERIC_WRITE) && (share & FILE_SHARE_READ);
    for (;;) {
        auto file = std::make_unique<HostFile>(
            Descriptor(open(path.c_str(), OpenFlags(access, disposition), kNewFileMode)), access);
        if (!file->named.Valid())
            return FailToOpen(OpenError(errno, path));
        struct stat status;
        bool gone = false;
        int error = TakeFile(file->named.Number(), path, shared, status, gone);
        if (error == 0 && !gone && disposition == CREATE_ALWAYS)
            error = BeginAnew(*file, path, status);
        if (error != 0)
            return FailToOpen(ErrorOfHost(error));
        if (!gone)
            return AddKernelObject(std::move(file));
    }
}

HostFile* FindFile(HANDLE handle) {
    HostFile* file = FindKernelObject<HostFile>(handle);
    if (!file)
        SetLastError(ERROR_INVALID_HANDLE);
    return file;
}

// Moves all bytes, or as many as the host has (reading) or takes (writing).
template <typename Step>
BOOL Transfer(DWORD count, DWORD* done, Step step) {
    *done = 0;
    while (*done < count) {
        const ssize_t moved = step(*done, count - *done);
        if (moved < 0 && errno != EINTR)
            return Fail(ErrorOfHost(errno));
        if (moved == 0)
            break;
        *done += moved > 0 ? static_cast<DWORD>(moved) : 0;
    }
    return TRUE;
}

BOOL DeleteHostFile(const std::string& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0)
        return Fail(OpenError(errno, path));
    if (S_ISDIR(status.st_mode))
        return Fail(ERROR_ACCESS_DENIED);
    // Held until the name is gone, so that nobody opens the file in between. One that may not be read cannot
    // be held, but its name may still be taken away.
    const Descriptor held(S_ISREG(status.st_mode) ? open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)
                                                  : -1);
    if (held.Valid() && flock(held.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return Fail(ERROR_SHARING_VIOLATION);
    return unlink(path.c_str()) == 0 || Fail(ErrorOfHost(errno));
}

} // namespace

HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD share, void*, DWORD disposition, DWORD, HANDLE) {
    if (!(access & (GENERIC_READ | GENERIC_WRITE)) ||
        (disposition != CREATE_ALWAYS && disposition != OPEN_EXISTING))
        return FailToOpen(ERROR_INVALID_PARAMETER);
    return UnlessOutOfMemory(INVALID_HANDLE_VALUE, [&] {
        std::string host;
        if (!HostPath(path, host))
            return FailToOpen(ERROR_PATH_NOT_FOUND);
        // Before it is opened: closing a file of the store again would drop the locks that the store has on
        // it.
        if (BelongsToDevice(host))
            return FailToOpen(ERROR_ACCESS_DENIED);
        return OpenHostFile(host, access, share, disposition);
    });
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* read, void*) {
    *read = 0;
    const HostFile* source = FindFile(file);
    if (source && !(source->access & GENERIC_READ))
        return Fail(ERROR_ACCESS_DENIED);
    return source && Transfer(count, read, [&](DWORD offset, DWORD wanted) {
               return ::read(source->Number(), static_cast<BYTE*>(buffer) + offset, wanted);
           });
}

BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* written, void*) {
    *written = 0;
    HostFile* target = FindFile(file);
    if (target)
        target->complete = false;
    return target &&
           Transfer(count, written,
                    [&](DWORD offset, DWORD wanted) {
                        return ::write(target->Number(), static_cast<const BYTE*>(buffer) + offset, wanted);
                    }) &&
           (*written == count || Fail(ERROR_DISK_FULL));
}

BOOL FlushFileBuffers(HANDLE file) {
    HostFile* target = FindFile(file);
    if (!target)
        return FALSE;
    // What the host keeps nowhere, such as a terminal, has nothing to sync.
    target->complete = fsync(target->Number()) == 0 || errno == EINVAL;
    return target->complete || Fail(ErrorOfHost(errno));
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method) {
    const HostFile* target = FindFile(file);
    if (!target)
        return INVALID_SET_FILE_POINTER;
    const std::int64_t offset =
        distanceHigh ? static_cast<std::int64_t>((static_cast<std::uint64_t>(*distanceHigh) << 32) |
                                                 static_cast<DWORD>(distance))
                     : distance;
    if (method != FILE_BEGIN || offset < 0 || lseek(target->Number(), offset, SEEK_SET) < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (distanceHigh)
        *distanceHigh = static_cast<LONG>(offset >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(offset);
}

DWORD GetFileSize(HANDLE file, DWORD* high) {
    const HostFile* target = FindFile(file);
    struct stat status;
    if (!target)
        return INVALID_FILE_SIZE;
    if (fstat(target->Number(), &status) != 0) {
        SetLastError(ErrorOfHost(errno));
        return INVALID_FILE_SIZE;
    }
    if (high)
        *high = static_cast<DWORD>(status.st_size >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(status.st_size);
}

BOOL SetEndOfFile(HANDLE file) {
    HostFile* target = FindFile(file);
    if (target)
        target->complete = false;
    return target && (ftruncate(target->Number(), lseek(target->Number(), 0, SEEK_CUR)) == 0 ||
                      Fail(ErrorOfHost(errno)));
}

BOOL GetDiskFreeSpaceExW(const WCHAR* path, std::uint64_t* available, std::uint64_t* total) {
    std::string host;
    struct statvfs disk {};
    if (!HostPath(path, host) || statvfs(host.c_str(), &disk) != 0) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return FALSE;
    }
    *available = std::uint64_t{disk.f_bavail} * disk.f_frsize;
    *total = std::uint64_t{disk.f_blocks} * disk.f_frsize;
    return TRUE;
}

BOOL DeleteFileW(const WCHAR* path) {
    return UnlessOutOfMemory(
        BOOL{FALSE},
        [&] {
            std::string host;
            if (!HostPath(path, host))
                return Fail(ERROR_PATH_NOT_FOUND);
            return BelongsToDevice(host) ? Fail(ERROR_ACCESS_DENIED) : DeleteHostFile(host);
        });
}
