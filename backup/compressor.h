// The codec of compressed archives: adaptive LZW with codes of 9 to 16 bits and resets, in the bare code
// stream of the classic `compress` program, without that program's three bytes of header.
#pragma once

#include "platform/types.h"

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

    // Takes the tables, about a megabyte of page memory, trying twice; needed once before anything else.
    // False when there is not so much; the last error is then ERROR_NOT_ENOUGH_MEMORY.
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
    const BYTE* Output() const { return output ? output + outputStart : nullptr; }
    DWORD OutputLength() const { return outputUsed - outputStart; }

private:
    static constexpr DWORD kFirstWidth = 9;
    static constexpr DWORD kLastWidth = 16;
    static constexpr DWORD kClearCode = 256; // a reset; the codes below it are the bytes themselves
    static constexpr DWORD kFirstFree = 257;
    static constexpr DWORD kCodes = 1 << kLastWidth;
    static constexpr DWORD kSlotBits = 17; // twice as many slots as codes keep the searches short
    static constexpr DWORD kSlots = 1 << kSlotBits;
    static constexpr DWORD kFullGroup = 16; // bytes of eight codes of the last width
    static constexpr DWORD kHashSize = 69001;
    static constexpr DWORD kCheckGap = 50000; // input bytes between two tests of the ratio

    // Where a code's string stands in the output.
    struct Span {
        DWORD position;
        DWORD length;
    };
    // How far the input is parsed.
    struct Place {
        const BYTE* next;
        DWORD code; // of the string before `next`
        DWORD key;
    };
    enum class RunEnd { Done, Clear, Failed };

    static DWORD SlotOf(DWORD key) { return key * 2654435761u >> (32 - kSlotBits); }

    void FreeTables();
    bool NewOutput();
    bool DropOutput(); // always false
    bool Reserve(std::size_t bytes);

    bool CompressInput();
    template <bool learning>
    bool Parse(DWORD stop);
    template <bool learning>
    bool Match(Place& at, const BYTE* end, DWORD newCode);
    void AddBelow(const Place& at, DWORD node, DWORD newCode);
    std::uint16_t* FindSlot(DWORD slot, DWORD key);
    bool PackCodes(DWORD end);
    void PutCode(DWORD code);
    bool RatioFell();
    void Reset();
    void ForgetStrings();
    void WatchZeroPair(DWORD newCode);
    bool TakeSlot(DWORD key);

    bool ExpandInput();
    template <bool learning>
    RunEnd ExpandRun(DWORD width, std::size_t count);
    bool GrowForString(std::size_t end);

    // The two tables hold other things when compressing and when expanding.
    std::uint16_t* Pairs() { return codeTab; } // codes of strings of two bytes, by first | second << 8
    std::uint16_t* Slots() { return codeTab + kCodes; } // codes of longer strings, hashed
    DWORD* Keys() { return hashTab; }                   // by code: last byte << 16 | code of the rest
    DWORD* Nodes() { return hashTab + kCodes; }         // by code: the strings that are longer by a byte
    DWORD* TakenBits() { return hashTab + 2 * kCodes; } // a bit for each of kHashSize slots
    Span* Spans() { return reinterpret_cast<Span*>(hashTab); } // by code, when expanding

    const BYTE* input = nullptr;
    DWORD inputLength = 0;
    DWORD inCount = 0;      // bytes of input consumed
    LONG ratio = 0;         // the best one since the last reset, in 1/256
    LONG checkpoint = 0;    // the inCount from which on the ratio is tested next
    DWORD freeEnt = 0;      // the next code to be given
    DWORD outputLimit = 0;  // of the stream that is being expanded
    DWORD prefixCode = 0;   // what of the input is consumed but not yet written
    DWORD watchedKeys = 0;  // a new string with a key up to this is shown to WatchZeroPair
    DWORD zeroPairSlot = 0; // see WatchZeroPair
    Span lastString = {0, 0};
    bool passedLimit = false;

    std::uint16_t* codeTab = nullptr;
    DWORD* hashTab = nullptr;
    BYTE* output = nullptr;
    DWORD outputStart = 0; // what stands before is not the caller's
    DWORD outputUsed = 0;
    DWORD outputCapacity = 0;
};
