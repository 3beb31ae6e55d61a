// Sort keys: byte strings whose plain comparison is the order of records.
#pragma once

#include <string>
#include <string_view>

#include "platform/objectstore.h"

namespace storage {

// Greater than every key, and less.
constexpr std::string_view kKeyAfterAll = "\xFF";
constexpr std::string_view kKeyBeforeAll = "";

// The key of a record, given in its storage form, in one sort order. Texts and blobs are told apart by their
// first 256 characters or bytes; blobs by their length first. Records with equal keys follow each other as
// they were made.
std::string SortKey(const SORTORDERSPEC& spec, WORD count, std::string_view form);

} // namespace storage
