#include "platform/device.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>

#include "platform/errors.h"

namespace {

std::string chosen;

std::string UsualDevice() {
    if (const char* device = std::getenv("STRANDVIEW_DEVICE"); device && *device)
        return device;
    // A relative data folder is to be ignored, as for every program that follows the desktop's folder rules.
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return std::string(data) + "/pocket-strandview/device";
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : "") + "/.local/share/pocket-strandview/device";
}

bool MakeFolder(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        // Parts above may exist and yet refuse: only the last one tells.
        const bool made = mkdir(path.substr(0, slash).c_str(), 0777) == 0;
        if (slash == std::string::npos) {
            const int cause = errno;
            struct stat status {};
            if (made || (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)))
                return true;
            errno = cause;
            return false;
        }
    }
}

} // namespace

bool UseDevice(const std::string& folder) {
    chosen = folder.empty() ? UsualDevice() : folder;
    while (chosen.size() > 1 && chosen.back() == '/')
        chosen.pop_back();
    if (MakeFolder(chosen)) {
        // A device that cannot be written may do without files of its own; its store can still be read.
        MakeFolder(DeviceRootFolder());
        return true;
    }
    SetLastError(errno == ENOSPC                       ? ERROR_DISK_FULL
                 : errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND
                                                       : ERROR_ACCESS_DENIED);
    return false;
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
