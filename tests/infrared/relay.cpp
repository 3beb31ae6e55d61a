#include "tests/infrared/relay.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int kRelayPatience = 15000; // milliseconds

sockaddr_un PathAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

bool Carry(int from, int to) {
    char bytes[1000]; // blocks come in pieces
    const ssize_t got = recv(from, bytes, sizeof(bytes), 0);
    return got > 0 && send(to, bytes, static_cast<std::size_t>(got), MSG_NOSIGNAL) == got;
}

void CarryAll(int listener, const std::string& here) {
    pollfd waiting = {listener, POLLIN, 0};
    if (poll(&waiting, 1, kRelayPatience) != 1)
        return;
    const int caller = accept(listener, nullptr, nullptr);
    const int called = socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = PathAddress(here);
    bool going = connect(called, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    while (going) {
        pollfd ends[] = {{caller, POLLIN, 0}, {called, POLLIN, 0}};
        going = poll(ends, 2, kRelayPatience) > 0;
        if (going && ends[0].revents)
            going = Carry(caller, called);
        if (going && ends[1].revents)
            going = Carry(called, caller);
    }
    close(called);
    close(caller);
}

} // namespace

Relay::Relay(const std::string& there, const std::string& here) {
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = PathAddress(there);
    bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    listen(listener, 1);
    thread = std::thread([=] {
        CarryAll(listener, here);
        close(listener);
    });
}
