// What the two ends of a code stream agree on.
#pragma once

#include "platform/types.h"

constexpr DWORD kFirstWidth = 9; // bits of a code
constexpr DWORD kLastWidth = 16;
constexpr DWORD kCodes = 1 << kLastWidth;
constexpr DWORD kClearCode = 256; // a reset; the codes below it are the bytes themselves
constexpr DWORD kFirstFree = 257;
