// Databases that are dragged out of the list to another program.
#pragma once

#include "platform/types.h"

// Lets the user drag an archive of the selected databases, which is written when the other program asks for
// it. Failures are reported when the drag is over.
void DragSelectedDatabases(HWND mainWindow);
