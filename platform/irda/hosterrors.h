// What goes wrong with the host's sockets, as the program is told of it.
#pragma once

#include "platform/irdaerrors.h"

// The last error that stands for an errno of a call on a socket or on the air's folder.
DWORD IrdaErrorOf(int hostError);
