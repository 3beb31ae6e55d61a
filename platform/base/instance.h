// One process of a device finds the window of another: a local socket named after the device and the window's
// class, dropped by the kernel when its process ends, so that nothing stale stays behind. Only processes of
// the same user are listened to.
#pragma once

#include "platform/types.h"

// Announces this process's window of that class on the current device. Returns a descriptor that becomes
// readable when another process wants the window in front; close() ends the announcement. -1 when another
// process has announced one, or when the host cannot do it.
int ListenForForegroundRequests(const WCHAR* className);
// Takes what has arrived at that descriptor; never waits long. True when the window shall come to the front.
bool AcceptForegroundRequests(int listener);

// Whether a process, this one not excepted, has announced a window of that class on the current device.
bool OtherInstanceHasWindow(const WCHAR* className);
// Asks for that window to come to the front. False when nobody is there to ask.
bool RequestForeground(const WCHAR* className);
