#include "infrared/irchannel.h"

#include "app/uiservices.h"
#include "infrared/protocol.h"
#include "platform/text.h"
#include "resources/resource.h"

namespace {

constexpr char kServiceName[] = "TARNWICKSCOPE15";
constexpr int kDeviceListBytes = 60;
constexpr int kBacklog = 1;
constexpr int kFormatCapacity = 80;

// There is nobody yet, or somebody who does not answer yet.
bool IsWorthAnotherTry(DWORD error) {
    return error == WSAETIMEDOUT || error == WSAECONNREFUSED || error == WSAENETDOWN ||
           error == WSAECONNABORTED || error == WSAEADDRNOTAVAIL;
}

void CloseSocket(SOCKET* handle) {
    if (*handle != INVALID_SOCKET)
        closesocket(*handle);
    *handle = INVALID_SOCKET;
}

} // namespace

IrChannel::IrChannel(HWND owner) : ownerWindow(owner) {}

IrChannel::~IrChannel() {
    Close();
}

void IrChannel::Close() {
    CloseSocket(&primarySocket);
    CloseSocket(&acceptedSocket);
}

void IrChannel::Report(UINT formatId, const WCHAR* call) const {
    const DWORD error = GetLastError();
    WCHAR format[kFormatCapacity];
    WCHAR message[kMessageCapacity];
    LoadText(formatId, format);
    wsprintfW(message, format, call, error);
    MessageText(ownerWindow, message, kFailureBox);
}

int IrChannel::Broken(UINT formatId, const WCHAR* call) {
    if (!broken && GetLastError() != WSAEINTR) {
        broken = true;
        Report(formatId, call);
    }
    return -1;
}

bool IrChannel::OpenSocket() {
    primarySocket = socket(AF_IRDA, SOCK_STREAM, 0);
    if (primarySocket == INVALID_SOCKET)
        Report(IDS_INFRARED_INITIALIZE, u"socket");
    return primarySocket != INVALID_SOCKET;
}

// Fills the address for the first device in range. Nobody looks at how many there are: without any the
// identifier stays 0, and connecting to it fails in a way that is worth another try.
bool IrChannel::FindDevice(SOCKADDR_IRDA* address) {
    union {
        DEVICELIST list;
        char bytes[kDeviceListBytes];
    } found = {};
    int length = sizeof(found);
    if (getsockopt(primarySocket, SOL_IRLMP, IRLMP_ENUMDEVICES, found.bytes, &length) == SOCKET_ERROR)
        return false;
    *address = {};
    address->irdaAddressFamily = AF_IRDA;
    for (int place = 0; place < kDeviceIdBytes; ++place)
        address->irdaDeviceID[place] = found.list.Device[0].irdaDeviceID[place];
    for (std::size_t place = 0; place < sizeof(kServiceName); ++place)
        address->irdaServiceName[place] = kServiceName[place];
    return true;
}

bool IrChannel::Listen() {
    if (!OpenSocket())
        return false;
    SOCKADDR_IRDA address;
    const WCHAR* failed = nullptr;
    if (!FindDevice(&address))
        failed = u"getsockopt";
    else if (bind(primarySocket, &address, sizeof(address)) == SOCKET_ERROR)
        failed = u"bind";
    else if (listen(primarySocket, kBacklog) == SOCKET_ERROR)
        failed = u"listen";
    if (!failed)
        return true;
    Report(IDS_INFRARED_INITIALIZE, failed);
    Close();
    return false;
}

bool IrChannel::CreateClient() {
    return OpenSocket();
}

IrChannel::ConnectResult IrChannel::Connect() {
    SOCKADDR_IRDA address;
    if (!FindDevice(&address)) {
        Report(IDS_INFRARED_COMMUNICATE, u"getsockopt");
        return kConnectFailed;
    }
    if (connect(primarySocket, &address, sizeof(address)) != SOCKET_ERROR)
        return kConnected;
    if (IsWorthAnotherTry(GetLastError()))
        return kTryAgain;
    Report(IDS_INFRARED_COMMUNICATE, u"connect");
    return kConnectFailed;
}

bool IrChannel::Accept() {
    SOCKADDR_IRDA address = {};
    int length = sizeof(address);
    acceptedSocket = accept(primarySocket, &address, &length);
    if (acceptedSocket == INVALID_SOCKET)
        Report(IDS_INFRARED_COMMUNICATE, u"accept");
    return acceptedSocket != INVALID_SOCKET;
}

bool IrChannel::PollReadable(bool primary) {
    const SOCKETSET readable = {1, {Chosen(primary)}};
    const int result = select(&readable);
    if (result == SOCKET_ERROR)
        Broken(IDS_INFRARED_COMMUNICATE, u"select");
    return result > 0;
}

int IrChannel::SendBytes(const void* buffer, int length) {
    const int sent = broken ? -1 : send(primarySocket, static_cast<const char*>(buffer), length, 0);
    return sent == SOCKET_ERROR ? Broken(IDS_INFRARED_SEND, u"send") : sent;
}

int IrChannel::ReceiveWhole(SOCKET from, char* buffer, int length) {
    int done = 0;
    while (done < length) {
        const int now = broken ? -1 : recv(from, buffer + done, length - done, 0);
        if (now == SOCKET_ERROR)
            return Broken(IDS_INFRARED_RECEIVE, u"recv");
        done += now;
    }
    return done;
}

int IrChannel::ReceiveBytes(void* buffer, int length) {
    return ReceiveWhole(acceptedSocket, static_cast<char*>(buffer), length);
}

bool IrChannel::SendCode(DWORD value, bool primary) {
    const char* bytes = reinterpret_cast<const char*>(&value);
    const int sent = broken ? -1 : send(Chosen(primary), bytes, sizeof(value), 0);
    if (sent == SOCKET_ERROR)
        Broken(IDS_INFRARED_SEND, u"send");
    return sent == sizeof(value);
}

DWORD IrChannel::ReceiveCode(bool primary) {
    DWORD value = 0;
    const int received = ReceiveWhole(Chosen(primary), reinterpret_cast<char*>(&value), sizeof(value));
    return received == sizeof(value) ? value : kCancel;
}
