// Streams are the same, byte for byte, as those of the handheld's own codec, and that takes following one
// habit of its string table. The table had 69001 slots, held each string under the key `last byte << 16 |
// code of the rest`, and took a slot for free when the key there was not above 0. So the pair of two zero
// bytes, whose key is 0, could lose its slot to another string that came by in its search, and was then
// learned again under a new code. Readers never mind, but the codes that follow are others.
#pragma once

#include "backup/codestream.h"

class ZeroPairWatch {
public:
    static constexpr DWORD kHashSize = 69001;
    static constexpr DWORD kWords = kHashSize / 32 + 1;

    // `bits` are kWords of room, for a bit for each slot.
    explicit ZeroPairWatch(DWORD* bits) : taken(bits) {}

    // Whether Learned is to be told of a new string with this key.
    bool Concerns(DWORD key) const { return key <= watchedKeys; }
    // `keys` are those of all strings up to this new one. True when the pair lost its slot, and is no longer
    // known.
    bool Learned(const DWORD* keys, DWORD newCode);
    // No string is known any more.
    void Reset() { watchedKeys = 0; }

private:
    bool TakeSlot(DWORD key);

    DWORD* taken;
    DWORD watchedKeys = 0; // only strings with a key up to this concern the pair
    DWORD pairSlot = 0;
};
