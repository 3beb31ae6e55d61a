// A database travels to another device over the infrared port.
#pragma once

#include "platform/window.h"

// Both return whether the command ran to its end, successfully or not. What fails is shown.
bool SendDatabase(HWND mainWindow, const WCHAR* name);
// A database that did not arrive whole is not there.
bool ReceiveDatabase(HWND mainWindow);
