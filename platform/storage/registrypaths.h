// The registry's keys as rows of the store, found and made by their paths.
#pragma once

#include <string_view>

#include "platform/storage/registrykeys.h"

namespace storage {

// The error of a path with a part that is too long, else ERROR_SUCCESS. `length` is that of a key's own path
// below its main key and grows to that of the path behind it.
DWORD MeasurePath(std::u16string_view path, std::size_t& length);
// kNoKey with the last error set when there is none.
std::int64_t FindPath(Store& store, std::int64_t key, std::u16string_view path);
// Makes what is missing of a path, within a transaction; only the last key gets the class. kNoKey with the
// last error set on failure.
std::int64_t MakePath(Store& store, std::int64_t parent, std::u16string_view path,
                      std::u16string_view keyClass);
// Spares the next search for it.
void RememberChild(const Store& store, std::int64_t parent, std::u16string_view folded, std::int64_t id);

} // namespace storage
