// Tells the windows of open databases what other processes did to them.
#pragma once

#include "platform/types.h"

// How a message is posted; null, the state at start, drops them.
using NotifySink = void (*)(HWND, UINT, WPARAM, LPARAM);
void SetNotifySink(NotifySink sink);

// Whether any open database has a window, so that polling is worth while.
bool StoreWatchWanted();
// Looks for changes since the last call, or since the database was opened, and posts a message for each. To
// be called some times a second; costs next to nothing when no other process wrote.
void PollStoreChanges();
