#include "platform/base/devicefiles.h"

#include <climits>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/paths.h"
#include "platform/device.h"

namespace {

constexpr int kMostLinks = 40; // as many as the host itself follows

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool SameFile(const std::string& one, const std::string& other) {
    struct stat first, second;
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool IsDevice(const std::string& folder) {
    struct stat store, root;
    return SameFile(folder, DeviceFolder()) ||
           (stat((folder + "/objectstore.db").c_str(), &store) == 0 && S_ISREG(store.st_mode) &&
            stat((folder + "/root").c_str(), &root) == 0 && S_ISDIR(root.st_mode));
}

// `path` is a real one. The innermost device around it decides.
bool LiesBesideRoot(std::string path) {
    while (path.size() > 1) {
        const std::string folder = FolderOf(path);
        if (IsDevice(folder))
            return NameOf(path) != "root";
        path = folder;
    }
    return false;
}

// The store may lie elsewhere, behind a link; what belongs to it lies beside the real file.
bool IsStoreFile(const std::string& path) {
    const std::string store = RealFilePath(DeviceStorePath());
    for (const char* suffix : {"", "-wal", "-shm", "-journal", "-lock"}) {
        const std::string file = store + suffix;
        if (!store.empty() && (path == file || SameFile(path, file)))
            return true;
    }
    return false;
}

} // namespace

std::string RealFilePath(const std::string& host) {
    std::string path = host;
    for (int links = 0; links < kMostLinks; ++links) {
        if (std::string real = RealPath(path); !real.empty())
            return real;
        char next[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), next, sizeof(next));
        if (length <= 0) {
            const std::string folder = RealPath(FolderOf(path));
            return folder.empty() ? folder : folder + (folder == "/" ? "" : "/") + NameOf(path);
        }
        const std::string link(next, static_cast<std::size_t>(length));
        path = link.front() == '/' ? link : FolderOf(path).append("/").append(link);
    }
    return {};
}

bool BelongsToDevice(const std::string& host) {
    const std::string real = RealFilePath(host);
    const std::string folder = RealPath(FolderOf(host)); // of the name itself, which may be a link
    return (!real.empty() && (LiesBesideRoot(real) || IsStoreFile(real))) ||
           (!folder.empty() && LiesBesideRoot(folder + '/' + NameOf(host)));
}
