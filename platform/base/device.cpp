#include "platform/device.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/hosterror.h"

namespace {

constexpr mode_t kOwnersFolder = 0700;

std::string chosen;

// `known` tells whether the environment says where it is.
std::string UsualDevice(bool& known) {
    if (const char* device = std::getenv("STRANDVIEW_DEVICE"); device && *device)
        return device;
    // A relative data folder is to be ignored, as for every program that follows the desktop's folder rules.
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return std::string(data) + "/pocket-strandview/device";
    const char* home = std::getenv("HOME");
    known = home && *home == '/';
    return std::string(home ? home : "") + "/.local/share/pocket-strandview/device";
}

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// With the folders above it.
bool MakeFolder(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        // Parts above may exist and yet refuse: only the last one tells.
        const bool made = mkdir(path.substr(0, slash).c_str(), kOwnersFolder) == 0;
        if (slash == std::string::npos) {
            const int cause = errno;
            if (made || IsFolder(path))
                return true;
            errno = cause;
            return false;
        }
    }
}

bool HasStore() {
    struct stat status {};
    return stat(DeviceStorePath().c_str(), &status) == 0;
}

// Whether the store's file is empty, or a database that nobody has put anything into. What was written last
// may stand in the log beside it.
bool IsBlankStore() {
    constexpr std::size_t kApplicationId = 68; // where SQLite's header has it
    struct stat status {};
    const std::string log = DeviceStorePath() + "-wal";
    if (stat(log.c_str(), &status) == 0 && status.st_size > 0)
        return false;
    if (stat(DeviceStorePath().c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    if (status.st_size == 0)
        return true;
    std::ifstream store(DeviceStorePath(), std::ios::binary);
    char header[kApplicationId + 4] = {};
    store.read(header, sizeof(header));
    constexpr std::string_view kSqlite = "SQLite format 3";
    return store && std::string_view(header, sizeof(header)).starts_with(kSqlite) &&
           std::all_of(header + kApplicationId, std::end(header), [](char byte) { return byte == 0; });
}

// Whether the folder serves as a device and nothing else, as far as can be seen.
bool IsDevicesOwn(const std::string& folder) {
    std::error_code error;
    return HasStore() || std::filesystem::is_empty(folder, error);
}

// A folder that many users share, such as the one for temporary files, stays as it is.
void CloseToOthers(const std::string& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) == 0 && status.st_uid == geteuid() && !(status.st_mode & S_ISVTX) &&
        (status.st_mode & (S_IRWXG | S_IRWXO)))
        chmod(folder.c_str(), status.st_mode & kOwnersFolder);
}

bool Fail(int hostError) {
    SetLastError(hostError == EEXIST || hostError == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorOfHost(hostError));
    return false;
}

// False with the last error set.
bool FindDevice(bool make) {
    if (make)
        return MakeFolder(chosen) || Fail(errno);
    if (!IsFolder(chosen))
        return Fail(errno == 0 ? ENOTDIR : errno);
    if (!HasStore()) {
        SetLastError(errno == ENOENT ? ERROR_FILE_NOT_FOUND : ErrorOfHost(errno));
        return false;
    }
    if (IsBlankStore()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return false;
    }
    return true;
}

} // namespace

bool UseDevice(const std::string& folder, bool make) {
    const bool usual = folder.empty();
    bool known = true;
    chosen = usual ? UsualDevice(known) : folder;
    while (chosen.size() > 1 && chosen.back() == '/')
        chosen.pop_back();
    if (!known) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    errno = 0;
    if (!FindDevice(make))
        return false;
    if (IsDevicesOwn(chosen)) {
        CloseToOthers(chosen);
        CloseToOthers(DeviceRootFolder());
    }
    // A device that cannot be written may do without files of its own; its store can still be read.
    MakeFolder(DeviceRootFolder());
    return true;
}

const std::string& DeviceFolder() {
    if (chosen.empty())
        UseDevice({});
    return chosen;
}

std::string DeviceStorePath() {
    return DeviceFolder() + "/objectstore.db";
}

std::string DeviceRootFolder() {
    return DeviceFolder() + "/root";
}
