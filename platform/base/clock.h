// The present moment.
#pragma once

#include <chrono>

#include "platform/types.h"

FILETIME Now(); // UTC

// Counted from some moment before, and a few milliseconds late; costs much less than an exact clock.
std::chrono::milliseconds RoughClock();
