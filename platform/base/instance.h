// One process of a device finds the window of another: a local socket named after the device and the window's
// class, dropped by the kernel when its process ends, so that nothing stale stays behind. Only processes of
// the same user are listened to.
#pragma once

#include <string>
#include <vector>

#include "platform/types.h"

struct WindowClaim {
    int listener = -1;  // readable when another process wants the window in front; close() ends the claim
    bool taken = false; // another process of this user has it
};

// Claims the window of that class on the current device for this process, which may then make it. Of several
// processes that claim it one at a time gets it. Where the host cannot tell there is neither a listener nor
// is it taken: each process then has its window.
WindowClaim ClaimWindow(const WCHAR* className);

// The file that this process was started to open: a device path that does not depend on the working folder,
// empty for none. Taking it leaves none behind.
void SetStartDocument(const std::u16string& path);
std::u16string TakeStartDocument();

struct ForegroundRequests {
    bool any = false;                      // the window is to come to the front
    std::vector<std::u16string> documents; // device paths that it is to open there
};
// Takes what has arrived at that listener, even before the window was there; never waits long.
ForegroundRequests AcceptForegroundRequests(int listener);

// Asks the process that claimed that window, this one not excepted, to bring it to the front, and to open
// this process's document. False when nobody is there to ask.
bool RequestForeground(const WCHAR* className);
