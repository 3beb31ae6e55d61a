// Open keys of the registry, and what they know of the store.
#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "platform/base/handles.h"
#include "platform/storage/store.h"

namespace storage {

constexpr std::int64_t kNoKey = 0; // a key's row is any other number; those of the main keys are negative

struct ListedKey {
    explicit ListedKey(const Statement& row);
    std::u16string_view Folded() const { return folded; }

    std::int64_t id;
    std::u16string folded;
    std::u16string name;
    std::u16string keyClass;
    bool hasKeys; // below it
};

// A value in one piece of memory: its folded name, its name and its bytes.
class ListedValue {
public:
    explicit ListedValue(const Statement& row); // which yields these, with the type before the bytes
    std::u16string_view Folded() const { return {units.data(), foldedLength}; }
    std::u16string_view Name() const { return {units.data() + foldedLength, nameLength}; }
    std::string_view Bytes() const {
        return {reinterpret_cast<const char*>(units.data() + foldedLength + nameLength), size};
    }

    DWORD type;

private:
    std::u16string units;
    std::size_t foldedLength;
    std::size_t nameLength;
    std::size_t size;
};

// A stretch of an enumeration that was read ahead. It holds while nothing in the registry changes.
template <typename Item>
struct Stretch {
    std::uint64_t change = 0; // 0: nothing was read
    std::uint64_t ownChange = 0;
    DWORD first = 0; // the index of the first item
    bool reachesEnd = false;
    std::vector<Item> items;

    // Null when it lies elsewhere.
    const Item* Find(DWORD index) const {
        return index >= first && index - first < items.size() ? &items[index - first] : nullptr;
    }
};

struct ValueChange {
    std::u16string folded;
    std::u16string name;
    DWORD type;
    std::string bytes;
    bool deleted;
};

// Changes through one open key, which are written in one step.
struct Gathered {
    std::int64_t parent = kNoKey; // of a key that is to be made
    std::u16string path;          // below it; empty when the key is there
    std::u16string keyClass;
    std::deque<ValueChange> changes; // a vector would hold up to twice as many while it grows
    DWORD refusal = 0;               // why the last one was not taken: then none is written
};

struct OpenKey final : KernelObject {
    bool Close() override; // writes what is gathered

    std::int64_t id = kNoKey;   // a row, or minus 1 to minus 3 for a main key
    std::size_t pathLength = 0; // below the main key
    Stretch<ListedKey> keys;
    Stretch<ListedValue> values;
    std::unique_ptr<Gathered> gathered;
};

// Moves on with every change of the registry, in this process or another.
std::uint64_t RegistryChange(const Store& store);

// The same for changes in this process alone.
std::uint64_t OwnRegistryChange();

// Drops what was read ahead, which then is read anew.
void ForgetRead();

// ---- reading; the last error is set when they return null or false ----
const ListedKey* KeyAt(Store& store, OpenKey& key, DWORD index);
const ListedValue* ValueAt(Store& store, OpenKey& key, DWORD index);
// Finds a value by its folded name and hands it to `take`, a function of its type and its bytes.
bool FindValue(Store& store, OpenKey& key, std::u16string_view folded,
               void (*take)(void* context, DWORD type, std::string_view bytes), void* context);
template <typename Take>
bool FindValue(Store& store, OpenKey& key, std::u16string_view folded, Take take) {
    return FindValue(
        store, key, folded,
        [](void* context, DWORD type, std::string_view bytes) {
            (*static_cast<Take*>(context))(type, bytes);
        },
        &take);
}

// ---- changing; false with the last error set ----
// A key that is missing will be made when what is gathered is written.
void GatherKey(OpenKey& key, std::int64_t parent, std::u16string_view path, std::u16string_view keyClass);
void GatherChange(OpenKey& key, ValueChange change);
// Whether the value will be there when what is gathered has been written.
bool ValueWillExist(Store& store, OpenKey& key, std::u16string_view folded);
// Writes what is gathered through any key but `except` (which may be null).
bool WriteGathered(Store& store, const OpenKey* except);
bool WriteGatheredThrough(Store& store, OpenKey& key);
void GiveUpGathered(OpenKey& key);

} // namespace storage
