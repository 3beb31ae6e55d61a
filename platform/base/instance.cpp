#include "platform/base/instance.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <sched.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <utility>

#include "platform/base/descriptor.h"
#include "platform/base/utf8.h"
#include "platform/device.h"

namespace {

// A request is this letter, and behind it the path of a document in UTF-8, if there is one.
constexpr char kRequest = 'F';
constexpr std::size_t kLongestRequest = 1 + 3 * MAX_PATH; // bytes
constexpr int kBacklog = SOMAXCONN; // a file manager starts a process for each of many files
constexpr int kAtATime = 16;
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

std::u16string& StartDocument() {
    static auto* document = new std::u16string;
    return *document;
}

// Does not wait: a window whose queue of calls is full is too busy to answer, but it is there. An empty
// request only asks who is there.
Answer Call(const SocketName& name, const std::string& request) {
    const Descriptor caller(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(caller.Number(), name.Generic(), name.length) != 0)
        return errno == EAGAIN ? Answer::Reached : Answer::None;
    if (!SameUser(caller.Number()))
        return Answer::FromStranger;
    const auto length = static_cast<ssize_t>(request.size());
    const bool sent =
        request.empty() || send(caller.Number(), request.data(), request.size(), MSG_NOSIGNAL) == length;
    return sent ? Answer::Reached : Answer::None;
}

// What the caller says until it hangs up; nothing from one that only looked whether there is a window.
std::string HearRequest(int caller) {
    // A caller sends at once; one that does not is not waited for.
    const timeval patience{0, 200000};
    setsockopt(caller, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    char heard[kLongestRequest];
    const ssize_t length = SameUser(caller) ? recv(caller, heard, sizeof(heard), MSG_WAITALL) : 0;
    return std::string(heard, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}

void Take(const std::string& request, ForegroundRequests& requests) {
    if (request.empty() || request[0] != kRequest)
        return;
    requests.any = true;
    const std::u16string document = FromUtf8(std::string_view(request).substr(1));
    if (!document.empty() && document.size() < MAX_PATH)
        requests.documents.push_back(document);
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
        answer = Call(name, {});
        sched_yield();
    }
    if (listener >= 0)
        close(listener);
    return {-1, answer == Answer::Reached};
}

void SetStartDocument(const std::u16string& path) {
    StartDocument() = path;
}

std::u16string TakeStartDocument() {
    return std::exchange(StartDocument(), {});
}

ForegroundRequests AcceptForegroundRequests(int listener) {
    ForegroundRequests requests;
    for (int i = 0; i < kAtATime; ++i) {
        const int caller = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (caller < 0)
            break;
        Take(HearRequest(caller), requests);
        close(caller);
    }
    return requests;
}

bool RequestForeground(const WCHAR* className) {
    const SocketName name = NameOf(className);
    return name.length && Call(name, kRequest + ToUtf8(StartDocument())) == Answer::Reached;
}
