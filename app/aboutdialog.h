// The About dialog: the program, and the memory of the object store.
#pragma once

#include "platform/types.h"

void ShowAboutDialog(HWND owner);
