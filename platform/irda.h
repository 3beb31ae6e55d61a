// Infrared sockets: stream connections between devices, found and named as on an infrared port.
//
// The host has no such port. What stands for it is "the air", a folder in which each device that listens puts
// a socket (platform/irda/air.h). Two devices are in range of each other when they use the same folder.
//
// Calls that fail set the last error:
//   WSAEINTR          the blocking hook has ended the wait
//   WSAEACCES         the air belongs to another user
//   WSAEFAULT         a buffer or address of the wrong size
//   WSAEINVAL         the socket is not in the state that the call needs, or an unknown option or address
//   WSAEMFILE         too many sockets or files
//   WSAENOTSOCK       no open socket
//   WSAEAFNOSUPPORT   another family or kind of socket than an infrared stream
//   WSAEADDRINUSE     another process listens for this device already
//   WSAEADDRNOTAVAIL  nobody to connect to: the device is 0, or not in the air
//   WSAENETDOWN       there is no air, and none can be made
//   WSAECONNRESET     the other end of the link has gone, or was silent for too long
//   WSAENOBUFS        the host has no memory
//   WSAETIMEDOUT, WSAECONNREFUSED   the other device does not answer, for it is busy or about to go
//
// No call but `send` and `recv` waits. While those do, they call the blocking hook; without one windows are
// painted, and what the user does meanwhile stays in the queue until the program asks for messages again.
#pragma once

#include "platform/handles.h"
#include "platform/irdaerrors.h"
#include "platform/types.h"

using SOCKET = HANDLE;
constexpr SOCKET INVALID_SOCKET = INVALID_HANDLE_VALUE;
constexpr int SOCKET_ERROR = -1;

constexpr int AF_IRDA = 22;
constexpr int SOCK_STREAM = 1;

constexpr int kDeviceIdBytes = 4;
constexpr int kServiceNameCapacity = 25; // terminator included

struct SOCKADDR_IRDA {
    WORD irdaAddressFamily;            // AF_IRDA
    BYTE irdaDeviceID[kDeviceIdBytes]; // of the device to connect to; bind pays it no heed
    char irdaServiceName[kServiceNameCapacity];
};
static_assert(sizeof(SOCKADDR_IRDA) == 32 && offsetof(SOCKADDR_IRDA, irdaServiceName) == 6);

// What IRLMP_ENUMDEVICES gives: a count, and that many devices. A buffer of 60 bytes takes two.
constexpr int SOL_IRLMP = 255;
constexpr int IRLMP_ENUMDEVICES = 16;
struct IRDA_DEVICE_INFO {
    BYTE irdaDeviceID[kDeviceIdBytes];
    char irdaDeviceName[22]; // empty
    BYTE reserved[2];
};
struct DEVICELIST {
    DWORD numDevice;
    IRDA_DEVICE_INFO Device[1];
};
static_assert(sizeof(IRDA_DEVICE_INFO) == 28 && offsetof(DEVICELIST, Device) == 4);

// Called every few milliseconds while a call waits, and may dispatch messages: false ends the wait. It must
// not use the socket. Null for none.
using BlockingHook = bool (*)(void* context);
void SetBlockingHook(BlockingHook hook, void* context);

// INVALID_SOCKET on failure; all calls below but `accept` and `recv` return SOCKET_ERROR then, or 0 when they
// succeed and nothing else is said.
SOCKET socket(int family, int type, int protocol);
// Closes a listening socket or a link. The other end of a link can still read what was sent.
int closesocket(SOCKET handle);

// Fills `value` with a DEVICELIST of the other devices in the air, as many as fit, the one that has been
// listening longest first; *length are its bytes. What it does not fill stays as it was.
int getsockopt(SOCKET handle, int level, int option, char* value, int* length);

// Gives the socket the service name under which others will find it, once it listens.
int bind(SOCKET handle, const SOCKADDR_IRDA* address, int length);
// The device is in the air from now on, until it has a link or the socket is closed.
int listen(SOCKET handle, int backlog);
// Takes the link of another device, which a listening socket has one of in its life; `address` and its length
// are left as they are. INVALID_SOCKET on failure, WSAEINVAL when none waits.
SOCKET accept(SOCKET handle, SOCKADDR_IRDA* address, int* length);
int connect(SOCKET handle, const SOCKADDR_IRDA* address, int length);

struct SOCKETSET {
    DWORD fd_count; // 1, no more are taken
    SOCKET fd_array[1];
};
// Asks, without waiting, whether a listening socket has a link to accept, or a link something to read, its
// end included: 1 or 0.
int select(const SOCKETSET* readable);

// Sends the whole buffer: `length`. Infrared does not learn of a lost link before what has arrived was read:
// until then bytes for an end that has gone are lost without an error.
int send(SOCKET handle, const char* buffer, int length, int flags);
// What has arrived, at most `length` bytes, waiting for the first. A link has no orderly end: the first call
// that finds nothing more from an end that has gone fails, as does one that waits for 40 seconds.
int recv(SOCKET handle, char* buffer, int length, int flags);
