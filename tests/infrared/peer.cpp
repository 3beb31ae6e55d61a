#include "tests/infrared/peer.h"

#include <chrono>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr const char* kPeersName = "/00000001.TARNWICKSCOPE15";
constexpr timeval kPatience{15, 0};

sockaddr_un AddressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

int Call(const std::string& air) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    while (std::chrono::steady_clock::now() < end) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(air, error)) {
            const int link = socket(AF_UNIX, SOCK_STREAM, 0);
            const sockaddr_un address = AddressOf(entry.path());
            if (connect(link, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0)
                return link;
            close(link);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return -1;
}

int BeCalled(const std::string& air) {
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = AddressOf(air + kPeersName);
    setsockopt(listener, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
    bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    listen(listener, 1);
    const int link = accept(listener, nullptr, nullptr);
    close(listener);
    unlink(address.sun_path);
    return link;
}

std::string Hex(const std::string& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

} // namespace

Peer::Peer(Side side, const std::string& air, std::vector<PeerStep> todo) : steps(std::move(todo)) {
    thread = std::thread([this, side, air] { Run(side, air); });
}

Peer::~Peer() {
    if (link >= 0)
        shutdown(link, SHUT_RDWR);
    thread.join();
    if (link >= 0)
        close(link);
}

void Peer::Run(Side side, const std::string& air) {
    link = side == Calls ? Call(air) : BeCalled(air);
    if (link < 0)
        complaint = "nobody there";
    else
        Follow();
    if (link >= 0)
        shutdown(link, SHUT_RDWR); // the number stays taken, so that nobody else gets it meanwhile
    done = true;
}

void Peer::Follow() {
    setsockopt(link, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
    for (std::size_t number = 0; number < steps.size(); ++number) {
        const PeerStep& step = steps[number];
        if (step.kind == PeerStep::Send) {
            send(link, step.bytes.data(), step.bytes.size(), MSG_NOSIGNAL);
        } else if (step.kind == PeerStep::Close) {
            return;
        } else if (step.kind == PeerStep::Silence) {
            silent = true;
            for (char byte; recv(link, &byte, 1, 0) == 1;)
                heard += byte;
        } else {
            std::string got(step.kind == PeerStep::AwaitEnd ? 1 : step.bytes.size(), '\0');
            const ssize_t bytes = recv(link, got.data(), got.size(), MSG_WAITALL);
            got.resize(bytes < 0 ? 0 : static_cast<std::size_t>(bytes));
            if (step.kind == PeerStep::Skip ? got.size() != step.bytes.size() : got != step.bytes) {
                complaint = "step " + std::to_string(number) + ": " + Hex(got) + " for " + Hex(step.bytes);
                return;
            }
        }
    }
}
