// One property in a single block: what undo remembers and the clipboard carries.
#pragma once

#include "platform/objectstore.h"

// 16 bytes of CEPROPVAL, then the text with its terminator or the blob's bytes. The pointer in the value is
// the address of what follows, 0 when there is nothing; whoever gets a block from elsewhere must not trust
// it.
struct FlatProperty {
    CEPROPVAL property;
};
static_assert(sizeof(FlatProperty) == 16);

// The nine types that can be flattened.
bool IsKnownType(WORD type);
// A copy in a new block of the local heap, released with LocalFree; null when the type is not known or memory
// is short, which is the last error ERROR_NOT_ENOUGH_MEMORY then.
FlatProperty* Flatten(const CEPROPVAL& property);
// Reads a property out of a block of `bytes` bytes that came from elsewhere: its pointer is made anew. False
// when the block is too short for what it declares, its text does not end, or its type is not known.
bool Unflatten(FlatProperty* block, DWORD bytes, CEPROPVAL* property);
