// The air: a folder of sockets, one for each device that listens. A device has an identifier of four bytes
// and, while it listens, the socket "1a2b3c4d.SERVICE" in the air. What somebody else puts there in that
// form, such as a program that forwards a socket of another computer, is a device as well.
//
// Only the user gets into the folder, and only the user's processes are listened to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/base/descriptor.h"
#include "platform/types.h"

// As four bytes in the order in which an address has them; 0 is none.
using DeviceId = std::uint32_t;

// Chooses the air's folder, a path of the host. Empty stands for the usual one: $STRANDVIEW_AIR, else
// pocket-strandview/air in $XDG_RUNTIME_DIR, else one of the user's own in $TMPDIR or /tmp.
void UseAir(const std::string& folder);
const std::string& AirFolder();

// The folder, made when it is missing, and closed to other users. Not valid with the last error set:
// WSAEACCES when it belongs to somebody else or is no folder, WSAENETDOWN, WSAEMFILE.
Descriptor OpenAir();

// Of the chosen device: made at its first use and kept in the device's folder. A device that cannot be
// written gets one for the life of the process.
DeviceId OwnDeviceId();

// The devices that listen to a service, whatever its name, without this one: the longest listening first.
// What a killed process has left is removed.
std::vector<DeviceId> DevicesInAir(const Descriptor& air);

// A listening socket in the air, which is gone again when this goes.
class Presence {
public:
    Presence() = default;
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;
    ~Presence() { End(); }

    // False with the last error set: WSAEADDRINUSE when another process listens under this identifier.
    bool Begin(Descriptor folder, const std::string& service, int backlog);
    void End();
    bool Listening() const { return listener.Valid(); }
    // The next waiting link of a process of this user, not valid when there is none. Strangers are hung up
    // on.
    Descriptor NextCaller();

private:
    Descriptor air;
    Descriptor listener;
    std::string name;
};

// Not valid with the last error set.
Descriptor CallDevice(const Descriptor& air, DeviceId device, const std::string& service);
