#include "platform/irda/link.h"

#include <cerrno>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>

#include "platform/irda/hosterrors.h"
#include "platform/ui/core/messagequeue.h"
#include "platform/ui/core/windowsystem.h"

namespace {

constexpr int kHookInterval = 10; // milliseconds

int patience = 40000;
bool (*blockingHook)(void*) = nullptr;
void* hookContext = nullptr;

bool IsReady(const Descriptor& link, short event, int milliseconds) {
    pollfd wanted{link.Number(), event, 0};
    return poll(&wanted, 1, milliseconds) > 0;
}

// False to wait no longer.
bool DoMeanwhile() {
    if (blockingHook)
        return blockingHook(hookContext);
    if (ui::WindowSystemStarted())
        ui::PumpHost(false); // windows are painted, and input is queued
    return true;
}

bool StopWaiting(DWORD error) {
    SetLastError(error);
    return false;
}

// False with the last error set when the link is silent, or the hook does not want to wait.
bool WaitUntilReady(const Descriptor& link, short event) {
    const auto begin = std::chrono::steady_clock::now();
    while (!IsReady(link, event, kHookInterval)) {
        if (std::chrono::steady_clock::now() - begin >= std::chrono::milliseconds(patience))
            return StopWaiting(WSAECONNRESET);
        if (!DoMeanwhile())
            return StopWaiting(WSAEINTR);
    }
    return true;
}

bool IsWait(int hostError) {
    return hostError == EAGAIN || hostError == EINTR;
}

bool HasUnread(const Descriptor& link) {
    char byte;
    return recv(link.Number(), &byte, 1, MSG_PEEK) > 0;
}

} // namespace

void SetLinkPatience(int milliseconds) {
    patience = milliseconds;
}

void SetLinkHook(bool (*hook)(void* context), void* context) {
    blockingHook = hook;
    hookContext = context;
}

bool LinkHasNews(const Descriptor& link) {
    return IsReady(link, POLLIN, 0);
}

int SendOverLink(const Descriptor& link, const char* buffer, int length) {
    int sent = 0;
    while (sent < length) {
        const ssize_t now =
            send(link.Number(), buffer + sent, static_cast<std::size_t>(length - sent), MSG_NOSIGNAL);
        if (now >= 0) {
            sent += static_cast<int>(now);
        } else if (IsWait(errno)) {
            if (!WaitUntilReady(link, POLLOUT))
                return -1;
        } else {
            const int cause = errno;
            if (HasUnread(link))
                return length; // the end of the link is news that stands behind what has arrived
            SetLastError(IrdaErrorOf(cause));
            return -1;
        }
    }
    return sent;
}

int ReceiveFromLink(const Descriptor& link, char* buffer, int length) {
    while (true) {
        const ssize_t now = recv(link.Number(), buffer, static_cast<std::size_t>(length), 0);
        if (now > 0)
            return static_cast<int>(now);
        if (now == 0 || !IsWait(errno)) {
            SetLastError(now == 0 ? WSAECONNRESET : IrdaErrorOf(errno));
            return -1;
        }
        if (!WaitUntilReady(link, POLLIN))
            return -1;
    }
}
