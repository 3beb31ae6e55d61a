// The codec of compressed archives: adaptive LZW with codes of 9 to 16 bits and resets, in the bare code
// stream of the classic `compress` program, without that program's three bytes of header.
#pragma once

#include "backup/outputbuffer.h"

struct EncoderTables;
struct DecoderTables;

// One codec serves a whole backup or restore: its tables are taken once, and each buffer is a stream of its
// own. The cost of a call grows with its input, not with the tables.
class Compressor {
public:
    // A few bytes of stream can stand for gigabytes. This is the most that Expand makes when the caller knows
    // no better.
    static constexpr DWORD kExpandLimit = 64 << 20;

    Compressor() = default;
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;
    virtual ~Compressor();

    // Takes the tables, 1.4 MiB of page memory, trying twice; needed once before anything else. False when
    // there is not so much; the last error is then ERROR_NOT_ENOUGH_MEMORY.
    bool AllocateTables();

    // Makes one stream of `data`, at most 512 MiB of it. No bytes make an empty stream, which is not
    // expandable. False without tables, beyond that length, or when memory for the output runs out; there is
    // no output then.
    bool Compress(const BYTE* data, DWORD length);

    // Expands one stream. Damage is not noticed as such: any bytes are taken for codes, and it is the caller
    // who knows how long the result has to be. False without tables, for a stream without bytes, when the
    // result would pass `limit` bytes, or when memory for it runs out; there is no output then.
    bool Expand(const BYTE* data, DWORD length, DWORD limit = kExpandLimit);
    // It was the limit that made the last Expand fail.
    bool PassedLimit() const { return passedLimit; }

    // The result of the last call that succeeded. It is the codec's own, and the next call takes it away.
    const BYTE* Output() const { return output.data ? output.data + output.start : nullptr; }
    DWORD OutputLength() const { return output.used - output.start; }

private:
    void FreeTables();

    OutputBuffer output;
    bool passedLimit = false;
    EncoderTables* encoderTables = nullptr;
    DecoderTables* decoderTables = nullptr;
};
