// The question what to do when a database of that name exists already.
#pragma once

#include "platform/window.h"

// IDOK (rename), IDC_EXISTS_OVERWRITE or IDCANCEL.
int AskDatabaseExists(HWND owner, const WCHAR* name);
