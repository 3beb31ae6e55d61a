#include "backup/zeropair.h"

#include <algorithm>

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
bool ZeroPairWatch::Learned(const DWORD* keys, DWORD newCode) {
    DWORD string = newCode;
    if (watchedKeys != kEveryKey) {
        DWORD first = kFirstFree;
        while (first < newCode && FirstSlot(keys[first]) != 0)
            ++first;
        if (first == newCode)
            return false;
        watchedKeys = kEveryKey;
        pairSlot = kNoSlot;
        std::fill_n(taken, kWords, 0);
        string = kFirstFree;
    }
    bool lost = false;
    for (; string <= newCode; ++string)
        lost |= TakeSlot(keys[string]);
    return lost;
}

// Finds the slot that a new string would have had in that table. True when it was the zero pair's.
bool ZeroPairWatch::TakeSlot(DWORD key) {
    DWORD slot = FirstSlot(key);
    const DWORD back = slot ? kHashSize - slot : 1;
    while (taken[slot / 32] >> slot % 32 & 1) {
        slot = slot < back ? slot + kHashSize - back : slot - back;
        if (slot == pairSlot) {
            pairSlot = kNoSlot;
            return true;
        }
    }
    taken[slot / 32] |= 1u << slot % 32;
    if (key == kZeroPair)
        pairSlot = slot;
    return false;
}
