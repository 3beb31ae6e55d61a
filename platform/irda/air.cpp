#include "platform/irda/air.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "platform/device.h"
#include "platform/irda/hosterrors.h"

namespace {

constexpr mode_t kOwnersFolder = 0700;
constexpr int kIdDigits = 8;

std::string chosen;

std::string UsualAir() {
    if (const char* air = std::getenv("STRANDVIEW_AIR"); air && *air)
        return air;
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && *runtime == '/')
        return std::string(runtime) + "/pocket-strandview/air";
    // One folder, not one in another: in a folder that many use, anybody may have made the outer one.
    const char* temporary = std::getenv("TMPDIR");
    return std::string(temporary && *temporary == '/' ? temporary : "/tmp") + "/pocket-strandview-air-" +
           std::to_string(geteuid());
}

void MakeFolders(const std::string& path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        mkdir(path.substr(0, slash).c_str(), kOwnersFolder);
    mkdir(path.c_str(), kOwnersFolder);
}

std::string NameOf(DeviceId device, const std::string& service) {
    char digits[kIdDigits + 1];
    std::snprintf(digits, sizeof(digits), "%08x", device);
    return digits + ('.' + service);
}

// 0 for a name that is no device's.
DeviceId DeviceOf(const char* name) {
    const std::string_view text = name;
    constexpr std::string_view kDigits = "0123456789abcdef";
    if (text.size() < kIdDigits + 2 || text[kIdDigits] != '.' || text.find_first_not_of(kDigits) != kIdDigits)
        return 0;
    return static_cast<DeviceId>(std::strtoul(name, nullptr, 16));
}

Descriptor NewSocket(int kind) {
    Descriptor made(socket(AF_UNIX, kind | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!made.Valid())
        SetLastError(IrdaErrorOf(errno));
    return made;
}

struct SocketPath {
    // By the open folder: the way to it may be too long for a socket's address.
    SocketPath(const Descriptor& air, const std::string& name) {
        const std::string path = "/proc/self/fd/" + std::to_string(air.Number()) + '/' + name;
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    }
    const sockaddr* Generic() const { return reinterpret_cast<const sockaddr*>(&address); }

    sockaddr_un address{};
};

// Whether a process still has the socket. Asked with the wrong kind of socket, so that whoever listens there
// hears nothing of it.
bool IsAlive(const Descriptor& air, const std::string& name) {
    const Descriptor probe = NewSocket(SOCK_DGRAM);
    const SocketPath path(air, name);
    return connect(probe.Number(), path.Generic(), sizeof(path.address)) == 0 || errno != ECONNREFUSED;
}

// One process at a time looks for dead sockets and puts up new ones, or it might remove what another has just
// put there.
class AirLock {
public:
    explicit AirLock(const Descriptor& air) : air(air) { flock(air.Number(), LOCK_EX); }
    AirLock(const AirLock&) = delete;
    AirLock& operator=(const AirLock&) = delete;
    ~AirLock() { flock(air.Number(), LOCK_UN); }

private:
    const Descriptor& air;
};

struct Found {
    timespec since{};
    DeviceId device = 0;

    bool operator<(const Found& other) const {
        if (since.tv_sec != other.since.tv_sec)
            return since.tv_sec < other.since.tv_sec;
        return since.tv_nsec != other.since.tv_nsec ? since.tv_nsec < other.since.tv_nsec
                                                    : device < other.device;
    }
};

bool LookAt(const Descriptor& air, const std::string& name, Found& found) {
    struct stat status {};
    found.device = DeviceOf(name.c_str());
    if (!found.device || fstatat(air.Number(), name.c_str(), &status, 0) != 0 || !S_ISSOCK(status.st_mode))
        return false;
    if (!IsAlive(air, name)) {
        unlinkat(air.Number(), name.c_str(), 0);
        return false;
    }
    found.since = status.st_mtim;
    return found.device != OwnDeviceId();
}

DeviceId ReadDeviceId(const std::string& path) {
    char digits[kIdDigits + 2] = {};
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (read(file.Number(), digits, kIdDigits) != kIdDigits)
        return 0;
    digits[kIdDigits] = '.';
    digits[kIdDigits + 1] = '.'; // as a name in the air
    return DeviceOf(std::string(digits, sizeof(digits)).c_str());
}

// Of two processes that make one at once the first one's stays.
DeviceId MakeDeviceId(const std::string& path) {
    DeviceId made = 0;
    while (made == 0)
        if (getrandom(&made, sizeof(made), 0) != sizeof(made))
            made = static_cast<DeviceId>(getpid());
    const std::string fresh = path + '.' + std::to_string(getpid());
    const std::string digits = NameOf(made, "\n").erase(kIdDigits, 1);
    const Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    const bool written =
        write(file.Number(), digits.data(), digits.size()) == static_cast<ssize_t>(digits.size());
    const bool kept = written && link(fresh.c_str(), path.c_str()) == 0;
    if (written && !kept && errno == EEXIST) {
        if (const DeviceId other = ReadDeviceId(path))
            made = other;
        else
            rename(fresh.c_str(), path.c_str()); // what is there is no identifier
    }
    unlink(fresh.c_str());
    return made;
}

bool SameUser(int caller) {
    ucred peer{};
    socklen_t length = sizeof(peer);
    return getsockopt(caller, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == geteuid();
}

} // namespace

DWORD IrdaErrorOf(int hostError) {
    switch (hostError) {
    case EMFILE:
    case ENFILE:
        return WSAEMFILE;
    case ENOMEM:
    case ENOBUFS:
        return WSAENOBUFS;
    case EACCES:
    case EPERM:
        return WSAEACCES;
    case EADDRINUSE:
        return WSAEADDRINUSE;
    case ENOENT:
        return WSAEADDRNOTAVAIL;
    case ECONNREFUSED:
        return WSAECONNREFUSED;
    case EAGAIN:
        return WSAETIMEDOUT; // its queue of callers is full
    case EPIPE:
    case ECONNRESET:
        return WSAECONNRESET;
    default:
        return WSAENETDOWN;
    }
}

void UseAir(const std::string& folder) {
    chosen = folder.empty() ? UsualAir() : folder;
}

const std::string& AirFolder() {
    if (chosen.empty())
        UseAir({});
    return chosen;
}

Descriptor OpenAir() {
    MakeFolders(AirFolder());
    Descriptor air(open(AirFolder().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!air.Valid() || fstat(air.Number(), &status) != 0) {
        // Something else in its place, such as a link, is nobody's air.
        SetLastError(errno == ENOTDIR ? WSAEACCES : errno == ENOENT ? WSAENETDOWN : IrdaErrorOf(errno));
        return {};
    }
    if (status.st_uid != geteuid()) {
        SetLastError(WSAEACCES);
        return {};
    }
    if ((status.st_mode & 07777) != kOwnersFolder && fchmod(air.Number(), kOwnersFolder) != 0) {
        SetLastError(WSAEACCES);
        return {};
    }
    return air;
}

DeviceId OwnDeviceId() {
    static std::string device;
    static DeviceId id = 0;
    if (device != DeviceFolder()) {
        device = DeviceFolder();
        const std::string path = device + "/irda-address";
        id = ReadDeviceId(path);
        if (!id)
            id = MakeDeviceId(path);
    }
    return id;
}

std::vector<DeviceId> DevicesInAir(const Descriptor& air) {
    const AirLock lock(air);
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(
        fdopendir(openat(air.Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), closedir);
    std::vector<Found> all;
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr)
        if (Found found; LookAt(air, entry->d_name, found))
            all.push_back(found);
    std::sort(all.begin(), all.end());
    std::vector<DeviceId> devices;
    devices.reserve(all.size());
    for (const Found& found : all)
        devices.push_back(found.device);
    return devices;
}

bool Presence::Begin(Descriptor folder, const std::string& service, int backlog) {
    air = std::move(folder);
    name = NameOf(OwnDeviceId(), service);
    const AirLock lock(air);
    const bool left = faccessat(air.Number(), name.c_str(), F_OK, 0) == 0;
    if (left && IsAlive(air, name)) {
        SetLastError(WSAEADDRINUSE);
        return false;
    }
    if (left)
        unlinkat(air.Number(), name.c_str(), 0);
    Descriptor made = NewSocket(SOCK_STREAM);
    if (!made.Valid())
        return false;
    const SocketPath path(air, name);
    if (::bind(made.Number(), path.Generic(), sizeof(path.address)) != 0 ||
        ::listen(made.Number(), backlog) != 0) {
        SetLastError(IrdaErrorOf(errno));
        return false;
    }
    listener = std::move(made);
    return true;
}

void Presence::End() {
    if (!listener.Valid())
        return;
    const AirLock lock(air);
    unlinkat(air.Number(), name.c_str(), 0);
    listener.Close();
}

Descriptor Presence::NextCaller() {
    while (true) {
        Descriptor caller(::accept4(listener.Number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!caller.Valid() || SameUser(caller.Number()))
            return caller;
    }
}

Descriptor CallDevice(const Descriptor& air, DeviceId device, const std::string& service) {
    Descriptor caller = NewSocket(SOCK_STREAM);
    if (!caller.Valid())
        return caller;
    const SocketPath path(air, NameOf(device, service));
    if (::connect(caller.Number(), path.Generic(), sizeof(path.address)) == 0)
        return caller;
    SetLastError(IrdaErrorOf(errno));
    return {};
}
