// Streams are the same, byte for byte, as those of the handheld's own codec, and that takes following one
// habit of its string table. The table had 69001 slots, held each string under the key `last byte << 16 |
// code of the rest`, and took a slot for free when the key there was not above 0. So the pair of two zero
// bytes, whose key is 0, could lose its slot to another string that came by in its search, and was then
// learned again under a new code. Readers never mind, but the codes that follow are others.
#include <cstring>

#include "backup/compressor.h"

namespace {
constexpr DWORD kZeroPair = 0; // as a key
constexpr DWORD kNoSlot = 0xFFFFFFFF;
constexpr DWORD kEveryKey = 0xFFFFFFFF;

constexpr DWORD FirstSlot(DWORD key) {
    return (key >> 16 << 8) ^ (key & 0xFFFF);
}
} // namespace

// A new string was learned that concerns the zero pair: the pair itself, or, once it may lose its slot, any.
// In slot 0, its first choice, it is safe: a search that begins at slot i goes on to 2i, 3i, ..., modulo a
// prime, and one that begins at 0 does not stop there. It is in danger when slot 0 was taken, by a string
// that began there. Only then the slots that are taken have to be known, and are worked out from the strings
// so far.
void Compressor::WatchZeroPair(DWORD newCode) {
    const DWORD* const keys = Keys();
    DWORD string = newCode;
    if (watchedKeys != kEveryKey) {
        DWORD first = kFirstFree;
        while (first < newCode && FirstSlot(keys[first]) != 0)
            ++first;
        if (first == newCode)
            return;
        watchedKeys = kEveryKey;
        zeroPairSlot = kNoSlot;
        std::memset(TakenBits(), 0, (kHashSize / 32 + 1) * sizeof(DWORD));
        string = kFirstFree;
    }
    for (; string <= newCode; ++string)
        if (TakeSlot(keys[string]))
            Pairs()[kZeroPair] = 0;
}

// Finds the slot that a new string would have had in that table. True when it was the zero pair's.
bool Compressor::TakeSlot(DWORD key) {
    DWORD* const taken = TakenBits();
    DWORD slot = FirstSlot(key);
    const DWORD back = slot ? kHashSize - slot : 1;
    while (taken[slot / 32] >> slot % 32 & 1) {
        slot = slot < back ? slot + kHashSize - back : slot - back;
        if (slot == zeroPairSlot) {
            zeroPairSlot = kNoSlot;
            return true;
        }
    }
    taken[slot / 32] |= 1u << slot % 32;
    if (key == kZeroPair)
        zeroPairSlot = slot;
    return false;
}
