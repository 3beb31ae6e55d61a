// Compressing one stream. The strings learned so far are a tree, kept by code: a string and each string that
// is longer by a byte are found from one another in one step. What is written is the same as if they were
// kept in any other way.
#pragma once

#include <cstdint>

#include "backup/codestream.h"
#include "backup/outputbuffer.h"
#include "backup/zeropair.h"

// A string is another string and one byte more, which is what its key says:
//
//      31        24 23        16 15                     0
//     +------------+------------+------------------------+
//     |     0      | last byte  |    code of the rest    |
//     +------------+------------+------------------------+
//
// Its node says which strings are longer than itself by one byte. The first of them that was learned is there
// with byte and code; the code is 0 when there is none. The filter has bit `byte % 8` set for each of the
// others, which are then looked up in the slots.
//
//      31                     16 15         8 7          0
//     +------------------------+------------+------------+
//     |   code of the first    |   filter   | its byte   |
//     +------------------------+------------+------------+
constexpr DWORD KeyOf(DWORD rest, DWORD byte) {
    return byte << 16 | rest;
}
constexpr DWORD RestOf(DWORD key) {
    return key & 0xFFFF;
}
constexpr DWORD LastByteOf(DWORD key) {
    return key >> 16;
}

class Node {
public:
    DWORD FirstCode() const { return bits >> 16; }
    bool BeginsWith(DWORD byte) const { return (bits & 0xFF) == byte && FirstCode(); }
    bool MayHave(DWORD byte) const { return bits & FilterBit(byte); }
    void Clear() { bits = 0; }
    void SetFirst(DWORD byte, DWORD code) { bits = code << 16 | byte; }
    void AddOther(DWORD byte) { bits |= FilterBit(byte); }

private:
    static DWORD FilterBit(DWORD byte) { return 0x100u << (byte & 7); }

    DWORD bits;
};
static_assert(sizeof(Node) == 4);

constexpr DWORD kSlotBits = 17; // twice as many slots as codes keep the searches short
constexpr DWORD kSlots = 1 << kSlotBits;

// Between two streams pairs and slots are empty, which is 0; the rest may hold anything.
struct EncoderTables {
    std::uint16_t pairs[kCodes]; // codes of strings of two bytes, by first | second << 8
    std::uint16_t slots[kSlots]; // codes of longer strings, hashed
    DWORD keys[kCodes];          // by code
    Node nodes[kCodes];          // by code
    DWORD zeroPairBits[ZeroPairWatch::kWords];
};

class Encoder {
public:
    // Of `length` bytes, at least 1. `target` has begun.
    Encoder(EncoderTables* encoderTables, OutputBuffer* target, const BYTE* data, DWORD length);
    // Leaves pairs and slots empty.
    ~Encoder() { ForgetStrings(); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    // False when memory for the output runs out.
    bool Run();

private:
    template <bool learning>
    bool Parse(DWORD stop);
    bool PackCodes(DWORD end);
    void PutCode(DWORD code);
    bool RatioFell();
    void Reset();
    void ForgetStrings();

    EncoderTables& tables;
    OutputBuffer& output;
    ZeroPairWatch zeroPair;
    const BYTE* input;
    DWORD inputLength;
    DWORD inCount = 1;          // bytes of input consumed
    DWORD prefixCode;           // what of the input is consumed but not yet written
    LONG ratio = 0;             // the best one since the last reset, in 1/256
    LONG checkpoint;            // the inCount from which on the ratio is tested next
    DWORD freeEnt = kFirstFree; // the next code to be given
};
