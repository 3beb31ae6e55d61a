// One process of a device finds the window of another: a local socket named after the device and the window's
// class, dropped by the kernel when its process ends, so that nothing stale stays behind. Only processes of
// the same user are listened to.
#pragma once

#include "platform/types.h"

struct WindowClaim {
    int listener = -1;  // readable when another process wants the window in front; close() ends the claim
    bool taken = false; // another process of this user has it
};

// Claims for this process to have the window of that class on the current device, which may then be made. Of
// several processes that do so one at a time gets it. Neither a listener nor taken where the host cannot
// tell: then each process has its window.
WindowClaim ClaimWindow(const WCHAR* className);
// Takes what has arrived at that listener, be it from before the window was there; never waits long. True
// when the window is to come to the front.
bool AcceptForegroundRequests(int listener);

// Asks the process that claimed that window, this one not excepted, to bring it to the front. False when
// nobody is there to ask.
bool RequestForeground(const WCHAR* className);
