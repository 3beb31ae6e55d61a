// The Options dialog.
#pragma once

#include "platform/types.h"

// True when the user confirmed; the settings have the options then.
bool ShowOptionsDialog(HWND owner);
