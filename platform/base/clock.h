// The present moment.
#pragma once

#include "platform/types.h"

FILETIME Now(); // UTC
