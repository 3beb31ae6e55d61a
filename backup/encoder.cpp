#include "backup/encoder.h"

#include <algorithm>
#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "codes are stored as they lie in memory");

namespace {

constexpr DWORD kFullGroup = 16;   // bytes of eight codes of the last width
constexpr DWORD kCheckGap = 50000; // input bytes between two tests of the ratio
constexpr LONG kHeaderBytes = 3;   // Quirk: counted in the ratio, although no stream here has them
constexpr LONG kCoarseRatioFrom = 0x7FFFFF;
constexpr DWORD kFewStrings = 8192; // up to here they are forgotten one by one

// How far the input is parsed.
struct Parsed {
    const BYTE* next;
    DWORD code; // of the string before `next`
    DWORD key;
};

DWORD SlotOf(DWORD key) {
    return key * 2654435761u >> (32 - kSlotBits);
}

DWORD NextSlot(DWORD slot) {
    return (slot + 1) % kSlots;
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

// The slot of a string, or the free one that it would take.
inline std::uint16_t* FindSlot(EncoderTables& tables, DWORD slot, DWORD key) {
    while (tables.slots[slot] && tables.keys[tables.slots[slot]] != key)
        slot = NextSlot(slot);
    return tables.slots + slot;
}

// Puts in a string that is surely new, since the node of all but its last byte says so.
inline void AddBelow(EncoderTables& tables, const Parsed& at, DWORD newCode) {
    const DWORD byte = at.next[-1];
    Node& node = tables.nodes[at.code];
    if (!node.FirstCode()) {
        node.SetFirst(byte, newCode);
        return;
    }
    node.AddOther(byte);
    DWORD slot = SlotOf(at.key);
    while (tables.slots[slot])
        slot = NextSlot(slot);
    tables.slots[slot] = static_cast<std::uint16_t>(newCode);
}

// Goes on from one byte to the longest known string, and to the key of that string and the byte after it,
// which is not known; learning, it is put in as `newCode`. False when the input ends before that. The third
// byte is looked up by the bytes alone, beside the second one and not after it. Inlined by force: with a call
// for each code, and what is parsed kept in memory, compressing takes about a tenth longer.
template <bool learning>
[[gnu::always_inline]] inline bool Match(EncoderTables& tables, Parsed& at, const BYTE* end, DWORD newCode) {
    DWORD byte = *at.next++;
    const DWORD two = at.code | byte << 8;
    const DWORD three = at.next != end ? two | static_cast<DWORD>(*at.next) << 16 : two;
    std::uint16_t* spot = &tables.pairs[two];
    at.key = KeyOf(at.code, byte);
    if (*spot) {
        at.code = *spot;
        if (at.next == end)
            return false;
        byte = *at.next++;
        at.key = KeyOf(at.code, byte);
        spot = FindSlot(tables, SlotOf(three), at.key);
    } else {
        if (learning)
            *spot = static_cast<std::uint16_t>(newCode);
        return true;
    }
    while (*spot) {
        at.code = *spot;
        Node node;
        for (;;) {
            if (at.next == end)
                return false;
            byte = *at.next++;
            node = tables.nodes[at.code];
            if (!node.BeginsWith(byte))
                break;
            at.code = node.FirstCode();
        }
        at.key = KeyOf(at.code, byte);
        if (!node.MayHave(byte)) {
            if (learning)
                AddBelow(tables, at, newCode);
            return true;
        }
        spot = FindSlot(tables, SlotOf(at.key), at.key);
    }
    if (learning)
        *spot = static_cast<std::uint16_t>(newCode);
    return true;
}

} // namespace

Encoder::Encoder(EncoderTables* encoderTables, OutputBuffer* target, const BYTE* data, DWORD length)
    : tables(*encoderTables), output(*target), zeroPair(encoderTables->zeroPairBits), input(data),
      inputLength(length), prefixCode(data[0]), checkpoint(kCheckGap) {}

// Splits input into the longest known strings. Learning, it goes on until all codes are given, and the codes
// to be written are the prefixes in the keys; else it writes them itself, and goes on until `stop` bytes are
// consumed. False when the input has ended, with its last code left in prefixCode.
template <bool learning>
bool Encoder::Parse(DWORD stop) {
    const BYTE* const end = input + inputLength;
    EncoderTables& known = tables; // local, since any byte that is written might be the encoder's own
    BYTE* to = output.data + output.used;
    DWORD newCode = freeEnt;
    Parsed at = {input + inCount, prefixCode, 0};
    bool more = false;
    while (!more && at.next != end && Match<learning>(known, at, end, newCode)) {
        if constexpr (learning) {
            known.keys[newCode] = at.key;
            known.nodes[newCode].Clear();
            if (zeroPair.Concerns(at.key) && zeroPair.Learned(known.keys, newCode))
                known.pairs[0] = 0;
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
    output.used = static_cast<DWORD>(to - output.data);
    return more;
}

bool Encoder::Run() {
    for (;;) {
        bool more = Parse<true>(0);
        if (!more)
            tables.keys[freeEnt] = prefixCode; // the last code, and no string is made with it
        if (!PackCodes(more ? freeEnt : freeEnt + 1))
            return false;
        // From here on no strings are learned, until the ratio falls.
        for (bool fell = false; more && !fell;) {
            const DWORD stop = std::max<DWORD>(checkpoint, inCount + 1);
            // Each code stands for a byte at least; after them come a last code, a reset and its padding.
            if (!output.Reserve(2 * (stop - inCount) + 4 * kFullGroup))
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
bool Encoder::PackCodes(DWORD end) {
    if (!output.Reserve(2 * (end - kFirstFree) + 2 * kFullGroup))
        return false;
    const DWORD* const keys = tables.keys;
    BYTE* to = output.data + output.used;
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
    output.used = static_cast<DWORD>(to - output.data);
    return true;
}

// One code of the last width, into room that is reserved.
void Encoder::PutCode(DWORD code) {
    std::memcpy(output.data + output.used, &code, 2);
    output.used += 2;
}

bool Encoder::RatioFell() {
    const LONG consumed = static_cast<LONG>(inCount);
    // Bytes count as written when their group of eight codes is full.
    const LONG bytesOut = kHeaderBytes + static_cast<LONG>(output.used / kFullGroup * kFullGroup);
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
void Encoder::Reset() {
    PutCode(kClearCode);
    // The group is filled up with what the group before it had there. A reader skips it.
    if (const DWORD begun = output.used % kFullGroup) {
        std::memcpy(output.data + output.used, output.data + output.used - kFullGroup, kFullGroup - begun);
        output.used += kFullGroup - begun;
    }
    ForgetStrings();
    freeEnt = kFirstFree;
    zeroPair.Reset();
}

// Leaves pairs and slots empty, as they are to be before a first byte.
void Encoder::ForgetStrings() {
    if (freeEnt - kFirstFree > kFewStrings) {
        std::memset(tables.pairs, 0, sizeof tables.pairs);
        std::memset(tables.slots, 0, sizeof tables.slots);
        return;
    }
    for (DWORD string = kFirstFree; string < freeEnt; ++string) {
        const DWORD key = tables.keys[string];
        const DWORD prefix = RestOf(key);
        if (prefix < kClearCode) {
            tables.pairs[prefix | LastByteOf(key) << 8] = 0;
            continue;
        }
        const DWORD before = tables.keys[prefix];
        const bool ofThree = RestOf(before) < kClearCode;
        const DWORD three = RestOf(before) | LastByteOf(before) << 8 | LastByteOf(key) << 16;
        // A string stands in the unbroken row of slots that begins at its own.
        for (DWORD slot = SlotOf(ofThree ? three : key); tables.slots[slot]; slot = NextSlot(slot))
            tables.slots[slot] = 0;
    }
}
