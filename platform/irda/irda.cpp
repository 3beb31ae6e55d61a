// The calls of platform/irda.h. The host's own sockets have the same names, so they are kept behind air.h and
// link.h.
#include "platform/irda.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "platform/base/handles.h"
#include "platform/base/outofmemory.h"
#include "platform/irda/air.h"
#include "platform/irda/link.h"

namespace {

// It is at most one of a listening socket and an end of a link.
struct IrdaSocket final : KernelObject {
    std::string service; // once bound
    Presence presence;
    Descriptor caller; // of a listening socket: the link that waits to be accepted
    bool spent = false;
    Descriptor link;
};

int Fail(DWORD error) {
    SetLastError(error);
    return SOCKET_ERROR;
}

IrdaSocket* Find(SOCKET handle) {
    auto* found = FindKernelObject<IrdaSocket>(handle);
    if (!found)
        SetLastError(WSAENOTSOCK);
    return found;
}

// False with the last error set.
bool IsAddress(const SOCKADDR_IRDA* address, int length) {
    const bool whole = address && length == sizeof(SOCKADDR_IRDA);
    if (!whole)
        SetLastError(WSAEFAULT);
    else if (address->irdaAddressFamily != AF_IRDA)
        SetLastError(WSAEAFNOSUPPORT);
    return whole && address->irdaAddressFamily == AF_IRDA;
}

// Empty for a name that no file can have.
std::string ServiceOf(const SOCKADDR_IRDA& address) {
    const char* end = std::find(address.irdaServiceName, std::end(address.irdaServiceName), '\0');
    std::string name(address.irdaServiceName, end);
    return end == std::end(address.irdaServiceName) || name.find('/') != std::string::npos ? "" : name;
}

DeviceId DeviceOf(const BYTE (&bytes)[kDeviceIdBytes]) {
    DeviceId device = 0;
    for (const BYTE byte : bytes)
        device = device << 8 | byte;
    return device;
}

void PutDevice(DeviceId device, BYTE (&bytes)[kDeviceIdBytes]) {
    for (int place = kDeviceIdBytes - 1; place >= 0; --place, device >>= 8)
        bytes[place] = static_cast<BYTE>(device);
}

int Enumerate(char* value, int* length) {
    const Descriptor air = OpenAir();
    if (!air.Valid())
        return SOCKET_ERROR;
    const std::vector<DeviceId> devices = DevicesInAir(air);
    const std::size_t room = (static_cast<std::size_t>(*length) - sizeof(DWORD)) / sizeof(IRDA_DEVICE_INFO);
    const DWORD count = static_cast<DWORD>(std::min(devices.size(), room));
    std::memcpy(value, &count, sizeof(count));
    for (DWORD place = 0; place < count; ++place) {
        IRDA_DEVICE_INFO info = {};
        PutDevice(devices[place], info.irdaDeviceID);
        std::memcpy(value + sizeof(count) + place * sizeof(info), &info, sizeof(info));
    }
    *length = static_cast<int>(sizeof(count) + count * sizeof(IRDA_DEVICE_INFO));
    return 0;
}

int Listen(IrdaSocket& socket, int backlog) {
    Descriptor air = OpenAir();
    return air.Valid() && socket.presence.Begin(std::move(air), socket.service, backlog) ? 0 : SOCKET_ERROR;
}

int Connect(IrdaSocket& socket, const SOCKADDR_IRDA& address) {
    const DeviceId device = DeviceOf(address.irdaDeviceID);
    const std::string service = ServiceOf(address);
    if (device == 0 || service.empty())
        return Fail(device == 0 ? WSAEADDRNOTAVAIL : WSAEINVAL);
    const Descriptor air = OpenAir();
    if (!air.Valid())
        return SOCKET_ERROR;
    socket.link = CallDevice(air, device, service);
    return socket.link.Valid() ? 0 : SOCKET_ERROR;
}

bool HasCaller(IrdaSocket& listening) {
    if (!listening.caller.Valid() && listening.presence.Listening())
        listening.caller = listening.presence.NextCaller();
    return listening.caller.Valid();
}

SOCKET Accept(IrdaSocket& listening) {
    if (!HasCaller(listening)) {
        SetLastError(WSAEINVAL);
        return INVALID_SOCKET;
    }
    auto accepted = std::make_unique<IrdaSocket>();
    accepted->link = std::move(listening.caller);
    listening.spent = true;
    listening.presence.End(); // a device has one link, and is not found by others meanwhile
    return AddKernelObject(std::move(accepted));
}

} // namespace

void SetBlockingHook(BlockingHook hook, void* context) {
    SetLinkHook(hook, context);
}

SOCKET socket(int family, int type, int protocol) {
    if (family != AF_IRDA || type != SOCK_STREAM || protocol != 0) {
        SetLastError(WSAEAFNOSUPPORT);
        return INVALID_SOCKET;
    }
    return UnlessOutOfMemory(INVALID_SOCKET, [] { return AddKernelObject(std::make_unique<IrdaSocket>()); });
}

int closesocket(SOCKET handle) {
    return Find(handle) && CloseKernelObject(handle) ? 0 : SOCKET_ERROR;
}

int getsockopt(SOCKET handle, int level, int option, char* value, int* length) {
    if (!Find(handle))
        return SOCKET_ERROR;
    if (level != SOL_IRLMP || option != IRLMP_ENUMDEVICES)
        return Fail(WSAEINVAL);
    if (!value || !length || *length < static_cast<int>(sizeof(DEVICELIST)))
        return Fail(WSAEFAULT);
    return UnlessOutOfMemory(SOCKET_ERROR, [=] { return Enumerate(value, length); });
}

int bind(SOCKET handle, const SOCKADDR_IRDA* address, int length) {
    IrdaSocket* const found = Find(handle);
    if (!found || !IsAddress(address, length))
        return SOCKET_ERROR;
    const std::string service = ServiceOf(*address);
    if (service.empty() || !found->service.empty() || found->link.Valid())
        return Fail(WSAEINVAL);
    return UnlessOutOfMemory(SOCKET_ERROR, [&] {
        found->service = service;
        return 0;
    });
}

int listen(SOCKET handle, int backlog) {
    IrdaSocket* const found = Find(handle);
    if (!found)
        return SOCKET_ERROR;
    if (found->service.empty() || found->presence.Listening() || found->spent)
        return Fail(WSAEINVAL);
    return UnlessOutOfMemory(SOCKET_ERROR, [=] { return Listen(*found, backlog); });
}

SOCKET accept(SOCKET handle, SOCKADDR_IRDA*, int*) {
    IrdaSocket* const found = Find(handle);
    return found ? UnlessOutOfMemory(INVALID_SOCKET, [=] { return Accept(*found); }) : INVALID_SOCKET;
}

int connect(SOCKET handle, const SOCKADDR_IRDA* address, int length) {
    IrdaSocket* const found = Find(handle);
    if (!found || !IsAddress(address, length))
        return SOCKET_ERROR;
    if (!found->service.empty() || found->link.Valid())
        return Fail(WSAEINVAL);
    return UnlessOutOfMemory(SOCKET_ERROR, [=] { return Connect(*found, *address); });
}

int select(const SOCKETSET* readable) {
    IrdaSocket* const found = readable && readable->fd_count == 1 ? Find(readable->fd_array[0]) : nullptr;
    if (!found)
        return Fail(readable && readable->fd_count == 1 ? WSAENOTSOCK : WSAEFAULT);
    return found->link.Valid() ? LinkHasNews(found->link) : HasCaller(*found);
}

int send(SOCKET handle, const char* buffer, int length, int flags) {
    const IrdaSocket* const found = Find(handle);
    if (!found)
        return SOCKET_ERROR;
    if (!found->link.Valid() || flags != 0 || length < 0)
        return Fail(WSAEINVAL);
    return UnlessOutOfMemory(SOCKET_ERROR, [=] { return SendOverLink(found->link, buffer, length); });
}

int recv(SOCKET handle, char* buffer, int length, int flags) {
    const IrdaSocket* const found = Find(handle);
    if (!found)
        return SOCKET_ERROR;
    if (!found->link.Valid() || flags != 0 || length < 1)
        return Fail(WSAEINVAL);
    return UnlessOutOfMemory(SOCKET_ERROR, [=] { return ReceiveFromLink(found->link, buffer, length); });
}
