// What both sides of a transfer have: the dialog, the channel, and waiting that keeps the windows alive.
#pragma once

#include "infrared/irchannel.h"
#include "infrared/protocol.h"

class Transfer {
public:
    // Shows the dialog over the main window, which is disabled, under the title of that string and, unless it
    // is empty, "[name]".
    Transfer(HWND mainWindow, UINT titleString, const WCHAR* name);
    // The main window is enabled before the dialog goes, so that it becomes the active one.
    virtual ~Transfer();
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    bool Shown() const { return window; }
    void SetTitle(UINT titleString, const WCHAR* name);
    void SetStatus(UINT stringId);
    void SetStatus(UINT formatId, DWORD number, DWORD count);
    // The bar takes the place of the hint.
    void ShowBar();
    void SetSteps(DWORD steps);
    void Step();

    // Dispatches what waits, and asks when Cancel was pressed: false to stop. The channel calls it, too,
    // while a block that has begun is not there yet.
    bool Pump();
    // The same, and then the pause before each sending.
    bool PumpAndPause();
    // Pumps until data or a connection waits: false when the user stopped or the link broke.
    bool WaitReadable(bool primary);
    // The sender's: kAcknowledge, or kCancel, which has been shown.
    TransferCode AwaitAnswer();
    int Show(UINT stringId, UINT style);

    HWND mainWindow;
    HWND window = nullptr;
    IrChannel channel;
    bool stopped = false; // by the user

private:
    bool DispatchWaiting();
};
