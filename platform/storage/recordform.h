// A record's storage form: its CEPROPVAL entries, then their strings and blobs, with offsets from the start
// of the form in place of addresses. Offset 0 is the null pointer of a blob without bytes; that of a string
// is read, since earlier versions wrote it, but never written.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/objectstore.h"

namespace storage {

// More than any device ever took, and little enough for the local heap.
constexpr std::size_t kLargestRecord = std::size_t{16} << 20;

// One property between a caller's values and a storage form; its string or blob still lies where it came
// from.
struct Property {
    CEPROPID id = 0;
    BYTE value[8] = {}; // as stored, but for the offset, which is put in when the record is put together
    std::string_view outside; // the string with its terminator, or the blob
    bool present = false;     // whether there is a string or blob at all; else the pointer is null
    bool removed = false;
};

// Takes a storage form apart. False when it does not hold together.
bool ParseRecord(WORD count, std::string_view form, std::vector<Property>& properties);

// Applies a caller's values to a record: replaces, appends, and removes what is flagged CEDB_PROPDELETE.
// False when a pointer does not lie in a live block of the local heap with all that it stands for, or lies
// among the values.
bool ApplyValues(WORD count, const CEPROPVAL* values, std::vector<Property>& properties);

// Puts a record together. False when it would be too large.
bool BuildRecord(const std::vector<Property>& properties, WORD& count, std::string& form);

// Turns the offsets of a checked storage form in a block of the local heap into addresses. False when the
// form does not hold together.
bool RelocateRecord(WORD count, DWORD size, BYTE* block);

} // namespace storage
