#include "platform/files.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/handles.h"
#include "platform/base/paths.h"
#include "platform/errors.h"

namespace {

class HostFile : public KernelObject {
public:
    explicit HostFile(int descriptor) : descriptor(descriptor) {}
    ~HostFile() override { close(descriptor); } // drops the lock too
    const int descriptor;
};

DWORD ErrorOf(int hostError) {
    switch (hostError) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        return ERROR_PATH_NOT_FOUND;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    case EWOULDBLOCK:
        return ERROR_SHARING_VIOLATION;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case ENOMEM:
    case EMFILE:
    case ENFILE:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    default:
        return ERROR_ACCESS_DENIED;
    }
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

// A missing file and a missing folder on the way to it are the same to the host.
DWORD OpenError(int hostError, const std::string& path) {
    const std::size_t slash = path.rfind('/');
    struct stat status;
    if (hostError == ENOENT && slash != std::string::npos && slash != 0 &&
        stat(path.substr(0, slash).c_str(), &status) != 0)
        return ERROR_PATH_NOT_FOUND;
    return ErrorOf(hostError);
}

int OpenFlags(DWORD access, DWORD disposition) {
    // Not blocking: a pipe without a peer must not hold the program up, it is turned down afterwards.
    int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    flags |= !(access & GENERIC_WRITE) ? O_RDONLY : access & GENERIC_READ ? O_RDWR : O_WRONLY;
    flags |= disposition == CREATE_ALWAYS ? O_CREAT : disposition == CREATE_NEW ? O_CREAT | O_EXCL : 0;
    return flags;
}

// Takes an opened file for its opener, then empties it if that was asked for. Returns the host's error;
// `gone` tells that the file was deleted meanwhile, so that its name has to be opened again.
int TakeFile(int descriptor, bool shared, bool truncate, bool& gone) {
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        return errno;
    if (S_ISCHR(status.st_mode))
        return 0; // the host's devices are never owned by one
    if (!S_ISREG(status.st_mode))
        return EISDIR;
    // A file system without locks leaves its files unprotected rather than unreachable.
    if (flock(descriptor, (shared ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return EWOULDBLOCK;
    if (fstat(descriptor, &status) != 0)
        return errno;
    gone = status.st_nlink == 0;
    return !gone && truncate && status.st_size != 0 && ftruncate(descriptor, 0) != 0 ? errno : 0;
}

HANDLE OpenHostFile(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
    const bool shared = !(access & GENERIC_WRITE) && (share & FILE_SHARE_READ);
    for (;;) {
        const int descriptor = open(path.c_str(), OpenFlags(access, disposition), 0666);
        if (descriptor < 0) {
            SetLastError(OpenError(errno, path));
            return INVALID_HANDLE_VALUE;
        }
        bool gone = false;
        const int error = TakeFile(descriptor, shared, disposition == CREATE_ALWAYS, gone);
        if (error == 0 && !gone)
            return AddKernelObject(std::make_unique<HostFile>(descriptor));
        close(descriptor);
        if (error != 0) {
            SetLastError(ErrorOf(error));
            return INVALID_HANDLE_VALUE;
        }
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
            return Fail(ErrorOf(errno));
        if (moved == 0)
            break;
        *done += moved > 0 ? static_cast<DWORD>(moved) : 0;
    }
    return TRUE;
}

} // namespace

HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD share, void*, DWORD disposition, DWORD, HANDLE) {
    std::string host;
    if (!(access & (GENERIC_READ | GENERIC_WRITE)) || disposition < CREATE_NEW ||
        disposition > OPEN_EXISTING) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    if (!HostPath(path, host)) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return OpenHostFile(host, access, share, disposition);
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* read, void*) {
    *read = 0;
    const HostFile* source = FindFile(file);
    return source && Transfer(count, read, [&](DWORD offset, DWORD wanted) {
               return ::read(source->descriptor, static_cast<BYTE*>(buffer) + offset, wanted);
           });
}

BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* written, void*) {
    *written = 0;
    const HostFile* target = FindFile(file);
    return target &&
           Transfer(count, written,
                    [&](DWORD offset, DWORD wanted) {
                        return ::write(target->descriptor, static_cast<const BYTE*>(buffer) + offset, wanted);
                    }) &&
           (*written == count || Fail(ERROR_DISK_FULL));
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method) {
    const HostFile* target = FindFile(file);
    if (!target)
        return INVALID_SET_FILE_POINTER;
    std::int64_t place = distanceHigh
                             ? static_cast<std::int64_t>((static_cast<std::uint64_t>(*distanceHigh) << 32) |
                                                         static_cast<DWORD>(distance))
                             : distance;
    struct stat status;
    std::int64_t origin = 0;
    if (method == FILE_CURRENT)
        origin = lseek(target->descriptor, 0, SEEK_CUR);
    else if (method == FILE_END)
        origin = fstat(target->descriptor, &status) == 0 ? status.st_size : -1;
    if (method > FILE_END || origin < 0 || __builtin_add_overflow(place, origin, &place) || place < 0 ||
        (!distanceHigh && place > 0xFFFFFFFF) || lseek(target->descriptor, place, SEEK_SET) < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (distanceHigh)
        *distanceHigh = static_cast<LONG>(place >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(place);
}

DWORD GetFileSize(HANDLE file, DWORD* high) {
    const HostFile* target = FindFile(file);
    struct stat status;
    if (!target)
        return INVALID_FILE_SIZE;
    if (fstat(target->descriptor, &status) != 0) {
        SetLastError(ErrorOf(errno));
        return INVALID_FILE_SIZE;
    }
    if (high)
        *high = static_cast<DWORD>(status.st_size >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(status.st_size);
}

BOOL DeleteFileW(const WCHAR* path) {
    std::string host;
    struct stat status;
    if (!HostPath(path, host))
        return Fail(ERROR_PATH_NOT_FOUND);
    if (lstat(host.c_str(), &status) != 0)
        return Fail(OpenError(errno, host));
    if (S_ISDIR(status.st_mode))
        return Fail(ERROR_ACCESS_DENIED);
    // Held until the name is gone, so that nobody opens the file in between. One that may not be read cannot
    // be held, but its name may still be taken away.
    const int descriptor =
        S_ISREG(status.st_mode) ? open(host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK) : -1;
    const bool open = descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    const BOOL deleted = open                        ? Fail(ERROR_SHARING_VIOLATION)
                         : unlink(host.c_str()) == 0 ? TRUE
                                                     : Fail(ErrorOf(errno));
    if (descriptor >= 0)
        close(descriptor);
    return deleted;
}
