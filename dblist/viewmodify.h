// The View/Modify command.
#pragma once

#include "platform/types.h"

// Opens the one selected database in the viewer and waits for it; an empty one is offered a first record
// before.
void ViewSelectedDatabase(HWND mainWindow);
