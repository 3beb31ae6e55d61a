// Sizes in kilobytes and hundredths, both truncated: 1535 bytes are 1.49.
#pragma once

#include "platform/types.h"

struct SizeInKilobytes {
    explicit SizeInKilobytes(DWORD bytes) : whole(bytes / 1024), hundredths(bytes % 1024 * 100 / 1024) {}
    int whole; // kilobytes
    int hundredths;
};

constexpr int kSizeTextCapacity = 32;
// "1.49KB". Quirk: a size whose sign bit is set reads as 0.00KB, for the handheld took it for negative.
void FormatSizeText(DWORD bytes, WCHAR (&text)[kSizeTextCapacity]);
