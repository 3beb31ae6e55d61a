// The View/Modify command.
#pragma once

#include "platform/types.h"

// Opens the one selected database in the viewer and waits for it. For an empty database it asks first whether
// to add a record.
void ViewSelectedDatabase(HWND mainWindow);
