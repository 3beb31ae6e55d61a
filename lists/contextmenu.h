// The context menu of a list, when a key asks for it.
#pragma once

#include "platform/types.h"

// Below the label of the row that the keyboard is at, in coordinates of the screen; the list's corner where
// no row is.
POINT MenuPointOfFocusedRow(HWND list);
