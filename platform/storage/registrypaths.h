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
// Spares the next search for a key that was listed, and one for keys below it when it has none.
void RememberChild(const Store& store, std::int64_t parent, const ListedKey& child);
void ForgetWay();
// Whether it was listed as one that has none below it, and nothing has changed since.
bool IsKnownLeaf(const Store& store, std::int64_t key);

} // namespace storage
