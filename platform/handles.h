// Kernel objects: open files, open databases, enumerations.
#pragma once

#include "platform/types.h"

// Closes any of them. FALSE with last error ERROR_INVALID_HANDLE for a handle that is not open, so also for
// one that was closed before: handles are not used again.
BOOL CloseHandle(HANDLE handle);
