// What goes wrong on the host, as the program is told of it.
#pragma once

#include "platform/errors.h"

// The last error that stands for an errno of a file operation.
DWORD ErrorOfHost(int hostError);
