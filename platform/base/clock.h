// The present moment.
#pragma once

#include <chrono>

#include "platform/types.h"

FILETIME Now(); // UTC

// Since some start, some milliseconds late; costs much less than an exact clock.
std::chrono::milliseconds RoughClock();
