// One connection over the infrared port.
#pragma once

#include "platform/irda.h"
#include "platform/window.h"

// Every failure is shown once, with the name of the failing call and the last error. After one on the link
// nothing more can be sent or received, and further calls fail in silence. A call that the blocking hook has
// ended fails in silence, too, but the link stays.
class IrChannel {
public:
    explicit IrChannel(HWND owner);
    virtual ~IrChannel();
    IrChannel(const IrChannel&) = delete;
    IrChannel& operator=(const IrChannel&) = delete;

    void Close();

    bool Listen();       // the receiving side
    bool CreateClient(); // the sending side
    enum ConnectResult { kConnected = 0, kTryAgain = 1, kConnectFailed = -1 };
    ConnectResult Connect();
    bool Accept();

    // `primary` chooses between the two sockets. Whether data or a connection waits; never waits itself.
    bool PollReadable(bool primary);
    // One call; the bytes sent, or -1.
    int SendBytes(const void* buffer, int length);
    // The whole length, or -1.
    int ReceiveBytes(void* buffer, int length);
    bool SendCode(DWORD value, bool primary);
    // kCancel on failure.
    DWORD ReceiveCode(bool primary);

    SOCKET primarySocket = INVALID_SOCKET;  // the receiver's listening one, the sender's connected one
    SOCKET acceptedSocket = INVALID_SOCKET; // the receiver's connected one
    HWND ownerWindow;
    bool broken = false; // a call on a connected socket has failed

private:
    SOCKET Chosen(bool primary) const { return primary ? primarySocket : acceptedSocket; }
    bool OpenSocket();
    bool FindDevice(SOCKADDR_IRDA* address);
    int ReceiveWhole(SOCKET from, char* buffer, int length);
    void Report(UINT formatId, const WCHAR* call) const;
    int Broken(UINT formatId, const WCHAR* call);
};
