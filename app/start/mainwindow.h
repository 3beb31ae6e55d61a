// The main window: made at start, around the database list.
#pragma once

#include "platform/types.h"

// False when the class cannot be registered.
bool RegisterMainWindowClass();
// Creates and shows the main window, and everything in it; false on failure.
bool CreateMainWindow();
