#include "platform/base/instance.h"

#include <cstddef>
#include <cstring>
#include <sched.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "platform/base/descriptor.h"
#include "platform/base/utf8.h"
#include "platform/device.h"

namespace {

constexpr char kRequest = 'F';
constexpr int kBacklog = 16;
constexpr int kAttempts = 100;

struct SocketName {
    sockaddr_un address{};
    socklen_t length = 0; // 0: no name could be made

    const sockaddr* Generic() const { return reinterpret_cast<const sockaddr*>(&address); }
};

// In the kernel's name space, which no file outlives. The device is told by its folder's identity, so that it
// does not matter by which path it was named.
SocketName NameOf(const WCHAR* className) {
    SocketName result;
    struct stat folder;
    if (stat(DeviceFolder().c_str(), &folder) != 0)
        return result;
    std::string name(1, '\0');
    name += "pocket-strandview/" + std::to_string(getuid()) + '/' + std::to_string(folder.st_dev) + '/' +
            std::to_string(folder.st_ino) + '/' + ToUtf8(className);
    if (name.size() > sizeof(result.address.sun_path))
        return result;
    result.address.sun_family = AF_UNIX;
    std::memcpy(result.address.sun_path, name.data(), name.size());
    result.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    return result;
}

bool SameUser(int descriptor) {
    ucred peer{};
    socklen_t length = sizeof(peer);
    return getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == getuid();
}

enum class Answer { None, FromStranger, Reached };

// Does not wait: a window too busy to take calls has its queue full of them, and is there.
Answer Call(const SocketName& name, bool request) {
    const Descriptor caller(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(caller.Number(), name.Generic(), name.length) != 0)
        return errno == EAGAIN ? Answer::Reached : Answer::None;
    if (!SameUser(caller.Number()))
        return Answer::FromStranger;
    const bool sent =
        !request || send(caller.Number(), &kRequest, sizeof(kRequest), MSG_NOSIGNAL) == sizeof(kRequest);
    return sent ? Answer::Reached : Answer::None;
}

// One that only looked whether there is a window has hung up without a word.
bool HearRequest(int caller) {
    // A caller sends at once; one that does not is not waited for.
    const timeval patience{0, 200000};
    setsockopt(caller, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    char request = 0;
    return SameUser(caller) && recv(caller, &request, sizeof(request), 0) == sizeof(request) &&
           request == kRequest;
}

} // namespace

WindowClaim ClaimWindow(const WCHAR* className) {
    const SocketName name = NameOf(className);
    const int listener = name.length ? socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0) : -1;
    Answer answer = Answer::None;
    // Nobody answers when the other one ended just now, or does not listen yet: it is tried again.
    for (int i = 0; listener >= 0 && answer == Answer::None && i < kAttempts; ++i) {
        if (bind(listener, name.Generic(), name.length) == 0) {
            if (listen(listener, kBacklog) == 0)
                return {listener, false};
            break;
        }
        answer = Call(name, false);
        sched_yield();
    }
    if (listener >= 0)
        close(listener);
    return {-1, answer == Answer::Reached};
}

bool AcceptForegroundRequests(int listener) {
    bool requested = false;
    for (int i = 0; i < kBacklog; ++i) {
        const int caller = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (caller < 0)
            break;
        requested = HearRequest(caller) || requested;
        close(caller);
    }
    return requested;
}

bool RequestForeground(const WCHAR* className) {
    const SocketName name = NameOf(className);
    return name.length && Call(name, true) == Answer::Reached;
}
