#include "backup/decoder.h"

#include <algorithm>
#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "codes are read as they lie in memory");

namespace {

constexpr std::size_t kCopyStep = 16; // strings are copied in such steps, over their end
constexpr std::size_t kSlack = 4 * kCopyStep;
constexpr DWORD kMostOutput = 1 << 30;

DWORD ReadCode(const BYTE* stream, std::size_t length, std::size_t bit, DWORD width) {
    const std::size_t byte = bit / 8;
    DWORD value = 0;
    if (byte + sizeof value <= length)
        std::memcpy(&value, stream + byte, sizeof value);
    else
        std::memcpy(&value, stream + byte, length - byte);
    return value >> bit % 8 & ((1u << width) - 1);
}

// Ranges that begin at least a step apart, or whose first step alone counts.
void CopyString(BYTE* to, const BYTE* from, std::size_t length) {
    std::size_t copied = 0;
    do {
        BYTE step[kCopyStep];
        std::memcpy(step, from + copied, kCopyStep);
        std::memcpy(to + copied, step, kCopyStep);
        copied += kCopyStep;
    } while (copied < length);
}

} // namespace

Decoder::Decoder(DecoderTables* tables, OutputBuffer* target, DWORD limit)
    : spans(tables->spans), output(*target), outputLimit(std::min(limit, kMostOutput)) {
    // The strings of one byte stand in front of the output, so that they are copied as all others are.
    output.start = output.used = kClearCode;
    for (DWORD byte = 0; byte < kClearCode; ++byte) {
        output.data[byte] = static_cast<BYTE>(byte);
        spans[byte] = {byte, 1};
    }
}

bool Decoder::Run(const BYTE* data, DWORD length) {
    // A single byte is a code too: the bit that it lacks counts as 0.
    const BYTE lengthened[] = {*data, 0};
    input = length == 1 ? lengthened : data;
    inputLength = std::max<DWORD>(length, sizeof lengthened);
    return ExpandInput();
}

bool Decoder::ExpandInput() {
    for (;;) {
        // A first code makes a string of no meaning, under the code that is never looked up.
        freeEnt = kClearCode;
        RunEnd end = RunEnd::Done;
        for (DWORD width = kFirstWidth; end == RunEnd::Done; width = std::min(width + 1, kLastWidth)) {
            const std::size_t left = std::size_t{8} * (inputLength - inCount) / width;
            if (left == 0)
                return true;
            end = freeEnt < kCodes ? ExpandRun<true>(width, std::min<std::size_t>(left, 1u << (width - 1)))
                                   : ExpandRun<false>(width, left);
        }
        if (end == RunEnd::Failed)
            return false;
    }
}

// Expands `count` codes of one width, up to a reset. Learning, each makes a string of the one before and a
// byte of its own.
template <bool learning>
Decoder::RunEnd Decoder::ExpandRun(DWORD width, std::size_t count) {
    // Copies, since any byte that is written might be the decoder's own.
    Span* const known = spans;
    const BYTE* const stream = input;
    const std::size_t streamLength = inputLength;
    BYTE* to = output.data;
    const std::size_t firstBit = std::size_t{8} * inCount;
    std::size_t room = 0; // is asked for at the first string
    std::size_t used = output.used;
    Span last = lastString;
    DWORD newCode = freeEnt;
    std::size_t done = 0;
    RunEnd end = RunEnd::Done;
    while (end == RunEnd::Done && done < count) {
        DWORD code = ReadCode(stream, streamLength, firstBit + done * width, width);
        ++done;
        if (code == kClearCode) {
            end = RunEnd::Clear;
            break;
        }
        if (learning) {
            known[newCode] = {last.position, last.length + 1};
            // What is not known can only be the newest, which is just being made.
            code = std::min(code, newCode);
        }
        const Span string = known[code];
        if (used + string.length > room) {
            if (!GrowForString(used + string.length))
                return RunEnd::Failed;
            to = output.data;
            room = std::min<std::size_t>(output.capacity - kSlack, output.start + outputLimit);
        }
        CopyString(to + used, to + string.position, string.length);
        if (learning) {
            // The newest string ends with its own first byte, which the copy may have taken too early.
            if (code == newCode)
                to[used + string.length - 1] = to[used];
            ++newCode;
        }
        last = {static_cast<DWORD>(used), string.length};
        used += string.length;
    }
    output.used = static_cast<DWORD>(used);
    lastString = last;
    freeEnt = newCode;
    // A reset is followed by the rest of its group of eight codes.
    const std::size_t read = end == RunEnd::Clear ? (done + 7) / 8 * width : (done * width + 7) / 8;
    inCount += static_cast<DWORD>(std::min<std::size_t>(read, inputLength - inCount));
    return end;
}

// Makes room for output up to `end`, which counts what stands before it.
bool Decoder::GrowForString(std::size_t end) {
    passedLimit = end - output.start > outputLimit;
    if (passedLimit)
        return false;
    output.used = static_cast<DWORD>(std::min<std::size_t>(end, output.capacity));
    return output.Reserve(end - output.used + kSlack);
}
