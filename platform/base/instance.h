// One process of a device finds the window of another: a local socket named after the device and the window's
// class, dropped by the kernel when its process ends, so that nothing stale stays behind. Only processes of
// the same user are listened to.
#pragma once

#include "platform/types.h"

struct WindowClaim {
    int listener = -1;  // readable when another process wants the window in front; close() ends the claim
    bool taken = false; // another process of this user has it
};

// Claims the window of that class on the current device for this process, which may then make it. Of several
// processes that claim it one at a time gets it. Where the host cannot tell there is neither a listener nor
// is it taken: each process then has its window.
WindowClaim ClaimWindow(const WCHAR* className);
// Takes what has arrived at that listener, even before the window was there; never waits long. True
// when the window is to come to the front.
bool AcceptForegroundRequests(int listener);

// Asks the process that claimed that window, this one not excepted, to bring it to the front. False when
// nobody is there to ask.
bool RequestForeground(const WCHAR* className);
