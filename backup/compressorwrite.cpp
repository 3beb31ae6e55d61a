// Compressing. The strings learned so far are a tree, kept by code: a string and each string that is longer
// by a byte are found from one another in one step. What is written is the same as if they were kept in any
// other way.
#include <algorithm>
#include <bit>
#include <cstring>

#include "backup/compressor.h"

static_assert(std::endian::native == std::endian::little, "codes are stored as they lie in memory");

namespace {

constexpr DWORD kMostInput = 512 << 20;
constexpr LONG kHeaderBytes = 3; // counted in the ratio, although no stream here has them
constexpr LONG kCoarseRatioFrom = 0x7FFFFF;
constexpr DWORD kFewStrings = 8192; // up to here they are forgotten one by one

// A node is the byte of a string's first continuation, a filter of the others' bytes, and the first one's
// code, which is 0 when there is none.
constexpr DWORD NodeByte(DWORD node) {
    return node & 0xFF;
}
constexpr DWORD NodeCode(DWORD node) {
    return node >> 16;
}
constexpr DWORD FilterBit(DWORD byte) {
    return 0x100u << (byte & 7);
}

// Eight codes of less than the last width, from the low halves of `keys`. Writes 16 bytes, of which `width`
// count.
void PackGroup(BYTE* to, const DWORD* keys, DWORD width) {
    std::uint64_t halves[2] = {};
    for (DWORD code = 0; code < 8; ++code)
        halves[code / 4] |= static_cast<std::uint64_t>(keys[code] & 0xFFFF) << code % 4 * width;
    const std::uint64_t words[] = {halves[0] | halves[1] << 4 * width, halves[1] >> (64 - 4 * width)};
    std::memcpy(to, words, sizeof words);
}

} // namespace

bool Compressor::Compress(const BYTE* data, DWORD length) {
    if (!codeTab || !hashTab || length > kMostInput || !NewOutput())
        return DropOutput();
    input = data;
    inputLength = length;
    ratio = 0;
    checkpoint = kCheckGap;
    freeEnt = kFirstFree;
    watchedKeys = 0;
    const bool written = length == 0 || CompressInput();
    ForgetStrings();
    return written || DropOutput();
}

// The slot of a string, or the free one that it would take.
inline std::uint16_t* Compressor::FindSlot(DWORD slot, DWORD key) {
    std::uint16_t* const slots = Slots();
    while (slots[slot] && Keys()[slots[slot]] != key)
        slot = (slot + 1) % kSlots;
    return slots + slot;
}

// Puts in a string that is surely new, since the node of all but its last byte says so.
inline void Compressor::AddBelow(const Place& at, DWORD node, DWORD newCode) {
    const DWORD byte = at.next[-1];
    if (!NodeCode(node)) {
        Nodes()[at.code] = newCode << 16 | byte;
        return;
    }
    Nodes()[at.code] = node | FilterBit(byte);
    DWORD slot = SlotOf(at.key);
    while (Slots()[slot])
        slot = (slot + 1) % kSlots;
    Slots()[slot] = static_cast<std::uint16_t>(newCode);
}

// Goes on from one byte to the longest known string, and to the key of that string and the byte after it,
// which is not known; learning, it is put in as `newCode`. False when the input ends before that. The third
// byte is looked up by the bytes alone, beside the second one and not after it. Inlined by force: with a call
// for each code, and the place kept in memory, compressing takes about a tenth longer.
template <bool learning>
[[gnu::always_inline]] inline bool Compressor::Match(Place& at, const BYTE* end, DWORD newCode) {
    DWORD byte = *at.next++;
    const DWORD two = at.code | byte << 8;
    const DWORD three = at.next != end ? two | static_cast<DWORD>(*at.next) << 16 : two;
    std::uint16_t* spot = &Pairs()[two];
    at.key = byte << 16 | at.code;
    if (*spot) {
        at.code = *spot;
        if (at.next == end)
            return false;
        byte = *at.next++;
        at.key = byte << 16 | at.code;
        spot = FindSlot(SlotOf(three), at.key);
    } else {
        if (learning)
            *spot = static_cast<std::uint16_t>(newCode);
        return true;
    }
    while (*spot) {
        at.code = *spot;
        DWORD node;
        for (;;) {
            if (at.next == end)
                return false;
            byte = *at.next++;
            node = Nodes()[at.code];
            if (NodeByte(node) != byte || !NodeCode(node))
                break;
            at.code = NodeCode(node);
        }
        at.key = byte << 16 | at.code;
        if (!(node & FilterBit(byte))) {
            if (learning)
                AddBelow(at, node, newCode);
            return true;
        }
        spot = FindSlot(SlotOf(at.key), at.key);
    }
    if (learning)
        *spot = static_cast<std::uint16_t>(newCode);
    return true;
}

// Splits input into the longest known strings. Learning, it goes on until all codes are given, and the codes
// to be written are the prefixes in Keys(); else it writes them itself, and goes on until `stop` bytes are
// consumed. False when the input has ended, with its last code left in prefixCode.
template <bool learning>
bool Compressor::Parse(DWORD stop) {
    const BYTE* const end = input + inputLength;
    DWORD* const keys = Keys();
    BYTE* to = output + outputUsed;
    DWORD newCode = freeEnt;
    Place at = {input + inCount, prefixCode, 0};
    bool more = false;
    while (!more && at.next != end && Match<learning>(at, end, newCode)) {
        if constexpr (learning) {
            keys[newCode] = at.key;
            Nodes()[newCode] = 0;
            if (at.key <= watchedKeys)
                WatchZeroPair(newCode);
            more = ++newCode == kCodes;
        } else {
            std::memcpy(to, &at.code, 2);
            to += 2;
            more = static_cast<DWORD>(at.next - input) >= stop;
        }
        at.code = at.next[-1]; // not from the key, which takes longer to be known
    }
    inCount = static_cast<DWORD>(at.next - input);
    prefixCode = at.code;
    freeEnt = newCode;
    outputUsed = static_cast<DWORD>(to - output);
    return more;
}

bool Compressor::CompressInput() {
    prefixCode = input[0];
    inCount = 1;
    for (;;) {
        bool more = Parse<true>(0);
        if (!more)
            Keys()[freeEnt] = prefixCode; // the last code, and no string is made with it
        if (!PackCodes(more ? freeEnt : freeEnt + 1))
            return false;
        // From here on no strings are learned, until the ratio falls.
        for (bool fell = false; more && !fell;) {
            const DWORD stop = std::max<DWORD>(checkpoint, inCount + 1);
            // Each code stands for a byte at least; after them come a last code, a reset and its padding.
            if (!Reserve(2 * (stop - inCount) + 4 * kFullGroup))
                return false;
            more = Parse<false>(stop);
            if (!more)
                PutCode(prefixCode);
            fell = more && RatioFell();
        }
        if (!more)
            return true;
        Reset();
    }
}

// Writes the prefixes of the strings from the first one up to `end`, the codes growing as the strings do in
// number. Each width but the last comes 2^(width-1) times, so that its groups of eight are full.
bool Compressor::PackCodes(DWORD end) {
    if (!Reserve(2 * (end - kFirstFree) + 2 * kFullGroup))
        return false;
    const DWORD* const keys = Keys();
    BYTE* to = output + outputUsed;
    DWORD string = kFirstFree;
    for (DWORD width = kFirstWidth; width < kLastWidth && string < end; ++width) {
        const DWORD widthEnd = std::min(end, (1u << width) + 1);
        for (; string + 8 <= widthEnd; string += 8, to += width)
            PackGroup(to, keys + string, width);
        if (string < widthEnd) {
            DWORD rest[8] = {};
            std::copy(keys + string, keys + widthEnd, rest);
            PackGroup(to, rest, width);
            to += ((widthEnd - string) * width + 7) / 8;
            string = widthEnd;
        }
    }
    for (; string < end; ++string, to += 2)
        std::memcpy(to, keys + string, 2);
    outputUsed = static_cast<DWORD>(to - output);
    return true;
}

// One code of the last width, into room that is reserved.
void Compressor::PutCode(DWORD code) {
    std::memcpy(output + outputUsed, &code, 2);
    outputUsed += 2;
}

bool Compressor::RatioFell() {
    const LONG consumed = static_cast<LONG>(inCount);
    // Bytes count as written when their group of eight codes is full.
    const LONG bytesOut = kHeaderBytes + static_cast<LONG>(outputUsed / kFullGroup * kFullGroup);
    checkpoint = consumed + static_cast<LONG>(kCheckGap);
    LONG reached;
    if (consumed > kCoarseRatioFrom)
        reached = bytesOut >> 8 ? consumed / (bytesOut >> 8) : 0x7FFFFFFF;
    else
        reached = (consumed << 8) / bytesOut;
    const bool fell = reached <= ratio;
    ratio = fell ? 0 : reached;
    return fell;
}

// Writes the code that tells the reader to begin anew, and does so here.
void Compressor::Reset() {
    PutCode(kClearCode);
    // The group is filled up with what the group before it had there. A reader skips it.
    if (const DWORD begun = outputUsed % kFullGroup) {
        std::memcpy(output + outputUsed, output + outputUsed - kFullGroup, kFullGroup - begun);
        outputUsed += kFullGroup - begun;
    }
    ForgetStrings();
    freeEnt = kFirstFree;
    watchedKeys = 0;
}

// Leaves Pairs() and Slots() empty, as they are to be before a first byte.
void Compressor::ForgetStrings() {
    if (freeEnt - kFirstFree > kFewStrings) {
        std::memset(codeTab, 0, (kCodes + kSlots) * sizeof(std::uint16_t));
        return;
    }
    for (DWORD string = kFirstFree; string < freeEnt; ++string) {
        const DWORD key = Keys()[string];
        const DWORD prefix = key & 0xFFFF;
        if (prefix < kClearCode) {
            Pairs()[prefix | key >> 16 << 8] = 0;
            continue;
        }
        const DWORD before = Keys()[prefix];
        const bool ofThree = (before & 0xFFFF) < kClearCode;
        const DWORD three = (before & 0xFF) | before >> 16 << 8 | key >> 16 << 16;
        // A string stands in the unbroken row of slots that begins at its own.
        for (DWORD slot = SlotOf(ofThree ? three : key); Slots()[slot]; slot = (slot + 1) % kSlots)
            Slots()[slot] = 0;
    }
}
