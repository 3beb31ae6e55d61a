// The window procedure in front of the list view's own: taps, tap-and-hold, Enter, the header's drawing.
#pragma once

#include "platform/types.h"

LRESULT DatabaseListProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam);
