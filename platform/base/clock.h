// The present moment.
#pragma once

#include <chrono>

#include "platform/types.h"

FILETIME Now(); // UTC

// Since some start, some milliseconds late; costs a tenth of what an exact clock does.
std::chrono::milliseconds RoughClock();
