#include "tests/platform/airsockets.h"

#include <sys/socket.h>
#include <sys/un.h>

Descriptor PutSocket(const std::string& path) {
    Descriptor made(socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (bind(made.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        return {};
    listen(made.Number(), 1);
    return made;
}

bool GiveAway(const std::string& folder) {
    return chown(folder.c_str(), 65534, 65534) == 0;
}
