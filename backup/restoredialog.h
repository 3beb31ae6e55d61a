// The list of an archive's databases, from which the user picks those to restore.
#pragma once

#include "platform/types.h"

class RestoreEngine;

// True when all that the user selected was restored.
bool ShowRestoreList(HWND owner, RestoreEngine* engine);
