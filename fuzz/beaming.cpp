// Any bytes as what another device says, all at once and without listening, before it leaves.
#include "infrared/beaming.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "fuzz/targets.h"
#include "platform/base/descriptor.h"
#include "platform/irda/air.h"
#include "resources/resource.h"

namespace {

// It goes on each time the program sleeps.
class Stranger {
public:
    Stranger(const Scratch& scratch, std::string_view says)
        : air(scratch.device.folder + "/air"), says(says) {
        UseAir(air);
        Require(OpenAir().Valid(), "there is an air");
    }

    void Call() {
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(air, none))
            if (links.empty()) {
                Descriptor link(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
                const sockaddr_un address = AddressOf(entry.path().string());
                if (connect(link.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0)
                    SayAll(std::move(link));
            }
    }

    void Listen() {
        constexpr int kBacklog = 8;
        const sockaddr_un address = AddressOf(air + "/00000001.TARNWICKSCOPE15");
        listener = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
        unlink(address.sun_path);
        Require(bind(listener.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
                    listen(listener.Number(), kBacklog) == 0,
                "another device can listen");
    }
    // Also whoever only asks whether it is there.
    void Answer() {
        for (;;) {
            Descriptor link(accept4(listener.Number(), nullptr, nullptr, SOCK_NONBLOCK));
            if (!link.Valid())
                return;
            SayAll(std::move(link));
        }
    }

private:
    static sockaddr_un AddressOf(const std::string& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        return address;
    }

    void SayAll(Descriptor link) {
        send(link.Number(), says.data(), says.size(), MSG_NOSIGNAL);
        shutdown(link.Number(), SHUT_WR);
        links.push_back(std::move(link));
    }

    std::string air;
    std::string_view says;
    Descriptor listener;
    std::vector<Descriptor> links;
};

} // namespace

void FuzzReceive(Input input) {
    Scratch& scratch = Scratch::Fresh();
    scratch.dialogAnswer = IDC_EXISTS_OVERWRITE;
    Stranger sender(scratch, input.Rest());
    scratch.sleeping = [&] { sender.Call(); };
    ReceiveDatabase(nullptr);
    scratch.sleeping = nullptr;
    ReadEverything();
}

void FuzzSend(Input input) {
    Scratch& scratch = Scratch::Fresh();
    Stranger receiver(scratch, input.Rest());
    receiver.Listen();
    scratch.sleeping = [&] { receiver.Answer(); };
    SendDatabase(nullptr, u"Notes");
    scratch.sleeping = nullptr;
}
