#include "platform/base/replacement.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sys/xattr.h>

namespace {

constexpr const char* kTemporaryName = ".strandview.";
// On a kept file: which incomplete one took its name. By this it is told from a file of somebody else's, and
// the incomplete one from what was put in its place since.
constexpr const char* kKeptFor = "user.strandview.kept";

std::string FolderPrefixOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// Whether the error says that the file system knows no files without a name.
bool NeedsName(int hostError) {
    return hostError == EOPNOTSUPP || hostError == EISDIR || hostError == EINVAL;
}

// Only what differs is set: a file system without owners or modes has nothing that differs.
int TakeOver(int file, const struct stat& old) {
    struct stat made;
    if (fstat(file, &made) != 0 ||
        ((made.st_uid != old.st_uid || made.st_gid != old.st_gid) &&
         fchown(file, old.st_uid, old.st_gid) != 0) ||
        (made.st_mode != old.st_mode && fchmod(file, old.st_mode & ALLPERMS) != 0))
        return errno;
    return 0;
}

bool IsFile(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Tells one state of a file from every other, in eight bytes, for which an inode has room on a full disk,
// too. Stays when the file is renamed. Empty when there is none.
std::string IdentityOf(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return {};
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a, by words
    for (const std::int64_t part : {static_cast<std::int64_t>(status.st_ino), status.st_size,
                                    status.st_mtim.tv_sec, status.st_mtim.tv_nsec})
        hash = (hash ^ static_cast<std::uint64_t>(part)) * 0x100000001B3;
    return std::string(reinterpret_cast<const char*>(&hash), sizeof(hash));
}

// What a kept file is marked with; empty without a mark. Where files cannot be marked, `path~` is taken for a
// kept one, for the sake of the last complete file.
std::string MarkOf(const std::string& kept, const std::string& whereNoMarks) {
    char mark[128];
    if (!IsFile(kept))
        return {};
    const ssize_t length = getxattr(kept.c_str(), kKeptFor, mark, sizeof(mark));
    if (length < 0)
        return errno == ENOTSUP ? whereNoMarks : std::string();
    return std::string(mark, static_cast<std::size_t>(length));
}

int MarkKept(const std::string& kept, const std::string& identity) {
    const bool marked = setxattr(kept.c_str(), kKeptFor, identity.data(), identity.size(), 0) == 0;
    return marked || errno == ENOTSUP || errno == ENOENT ? 0 : errno;
}

bool IsBlank(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) != 0 || status.st_size == 0;
}

int Exchange(const std::string& one, const std::string& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

int Rename(const std::string& from, const std::string& to) {
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

// A failure is not reported: whatever comes of it, a power cut leaves one of the two files complete under the
// name.
void SyncFolder(const std::string& folder) {
    const Descriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (open.Valid())
        fsync(open.Number());
}

} // namespace

void ForgetKept(const std::string& path) {
    const std::string kept = path + '~';
    if (HasKept(path))
        unlink(kept.c_str());
}

bool HasKept(const std::string& path) {
    return !MarkOf(path + '~', "kept").empty();
}

Replacement::~Replacement() {
    if (!temporary.empty())
        unlink(temporary.c_str());
}

int Replacement::Begin(const std::string& path, const struct stat& old) {
    target = path;
    constexpr mode_t kOwnersOnly = 0600; // until it has the older one's mode
    file = Descriptor(open(FolderPrefixOf(path).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kOwnersOnly));
    if (!file.Valid() && NeedsName(errno)) {
        std::string name = FolderPrefixOf(path) + kTemporaryName + "XXXXXX";
        file = Descriptor(mkostemp(name.data(), O_CLOEXEC));
        temporary = file.Valid() ? name : std::string();
    }
    return file.Valid() ? TakeOver(file.Number(), old) : errno;
}

// A file without a name vanishes when its process is killed, so that it gets one at the last moment only.
int Replacement::Name() {
    std::random_device random;
    const std::string nameless = "/proc/self/fd/" + std::to_string(file.Number());
    while (temporary.empty()) {
        const std::string name = FolderPrefixOf(target) + kTemporaryName + std::to_string(random());
        if (linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            temporary = name;
        else if (errno != EEXIST)
            return errno;
    }
    return 0;
}

int Replacement::ExchangeAndKeep(const std::string& kept) {
    const int error = Rename(temporary, kept);
    if (error != 0 && Exchange(temporary, target) != 0)
        temporary.clear(); // it names the older file now, which must not go
    return error;
}

int Replacement::TakeName(bool complete) {
    const std::string kept = target + '~';
    const std::string standing = IdentityOf(target);
    const std::string mark = MarkOf(kept, standing);
    // One that was kept for what stands under the name, or where nothing stands, is the last complete one.
    const bool keptBefore = !mark.empty() && (mark == standing || IsBlank(target));
    // Marked first: an incomplete file must not take the name of a complete one that could not be told later.
    if (const int error = complete ? 0 : MarkKept(keptBefore ? kept : target, IdentityOf(temporary)))
        return error;
    if (complete || keptBefore)
        return Rename(temporary, target);
    if (Exchange(temporary, target) == 0)
        return ExchangeAndKeep(kept);
    // Not every file system exchanges names. And somebody may have taken the older one away.
    int error = Rename(target, kept);
    if (error != 0 && error != ENOENT)
        return error;
    error = Rename(temporary, target);
    if (error != 0)
        Rename(kept, target);
    return error;
}

int Replacement::PutInPlace(bool complete) {
    int error = temporary.empty() ? Name() : 0;
    // Closed first: some file systems only then say that they could not write.
    if (error == 0)
        error = file.Close();
    if (error == 0)
        error = TakeName(complete);
    if (error == 0) {
        temporary.clear();
        SyncFolder(FolderPrefixOf(target));
    }
    return error;
}
