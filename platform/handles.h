// Kernel objects: open files, open databases, enumerations.
#pragma once

#include "platform/types.h"

// Closes any of them. FALSE with last error ERROR_INVALID_HANDLE for a handle that is not open, so also for
// one that was closed before: handles are not used again. FALSE also for a file that could not be put in its
// place (platform/files.h); its handle is closed all the same.
BOOL CloseHandle(HANDLE handle);
