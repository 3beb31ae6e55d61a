// The dialog that asks what to find.
#pragma once

#include "viewer/search.h"

// True when the user confirmed; the options are then the user's.
bool ShowFindDialog(HWND owner, FindOptions* options);
