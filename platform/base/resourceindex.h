// The compiled resources: a row of entries, each a header and its bytes, both on multiples of four bytes.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/resources.h"

struct ResourceEntry {
    WORD type;
    WORD id;
    DWORD size; // bytes
    const std::byte* bytes;
};

// Every entry whose type and name are numbers, in the order of the file; what follows an entry that does not
// fit in `size` is left out. The entries point into `file`.
std::vector<ResourceEntry> IndexResources(const std::byte* file, std::size_t size);

// Sorted by type and id, once for the run.
const std::vector<ResourceEntry>& ProgramResources();

// The text with that number within a table of sixteen counted texts; null when it is absent or cut short.
// `length` receives its characters; the text has no terminator and need not be aligned.
const std::byte* FindTableText(const ResourceEntry& table, unsigned number, std::size_t& length);
