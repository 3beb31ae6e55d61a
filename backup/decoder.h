// Expanding one stream. A code's string is a string that was written before and the byte that followed it, so
// it stands in the output already: all that is kept of it is where.
#pragma once

#include <cstddef>

#include "backup/codestream.h"
#include "backup/outputbuffer.h"

// Where a code's string stands in the output.
struct Span {
    DWORD position;
    DWORD length;
};

struct DecoderTables {
    Span spans[kCodes]; // by code
};

class Decoder {
public:
    // `target` has begun; the tables may hold anything.
    Decoder(DecoderTables* tables, OutputBuffer* target, DWORD limit);

    // False when the result would pass the limit, or memory for it runs out.
    bool Run(const BYTE* data, DWORD length);

    bool passedLimit = false;

private:
    enum class RunEnd { Done, Clear, Failed };

    bool ExpandInput();
    template <bool learning>
    RunEnd ExpandRun(DWORD width, std::size_t count);
    bool GrowForString(std::size_t end);

    Span* spans;
    OutputBuffer& output;
    const BYTE* input = nullptr;
    DWORD inputLength = 0;
    DWORD inCount = 0; // bytes of input consumed
    DWORD freeEnt = 0; // the next code to be given
    DWORD outputLimit;
    Span lastString = {0, 0};
};
