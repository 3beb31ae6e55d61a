// Reading the registry's rows. Whoever asks for one is likely to ask for those behind it, so they are read
// some at a time.
#include <algorithm>
#include <deque>
#include <limits>
#include <type_traits>

#include "platform/errors.h"
#include "platform/storage/registrykeys.h"
#include "platform/storage/registrypaths.h"

namespace storage {

namespace {

constexpr std::size_t kStretchItems = 64;
constexpr std::size_t kUsualItems = 4;
constexpr std::size_t kStretchBytes = 64 * 1024; // from here on no further value is read ahead

std::size_t SizeOf(const ListedKey&) {
    return 0;
}
std::size_t SizeOf(const ListedValue& value) {
    return value.Bytes().size();
}

// Reads the items from an index on, with a statement that yields those from the folded name ?2 on, the first
// ?3 of them left out and at most ?4. Where the last stretch ended it goes on from its last name; from
// elsewhere the index is counted out.
template <typename Item>
bool ReadStretch(Store& store, const char* sql, std::int64_t key, DWORD index, Stretch<Item>& stretch) {
    const std::uint64_t change = RegistryChange(store);
    const bool follows =
        stretch.change == change && !stretch.items.empty() && index - stretch.first == stretch.items.size();
    const std::u16string from(follows ? stretch.items.back().Folded() : std::u16string_view());
    stretch.change = 0;
    stretch.items.clear();
    stretch.items.reserve(kUsualItems);
    Statement select(store.connection, sql);
    select.Bind(key).BindText(from).Bind(follows ? 1 : index).Bind(static_cast<std::int64_t>(kStretchItems));
    std::size_t bytes = 0;
    while (bytes < kStretchBytes && select.Row())
        bytes += SizeOf(stretch.items.emplace_back(select));
    if (select.Failed())
        return false;
    stretch.first = index;
    stretch.reachesEnd = bytes < kStretchBytes && stretch.items.size() < kStretchItems;
    stretch.change = change;
    stretch.ownChange = OwnRegistryChange();
    return true;
}

// In a damaged file a main key may lie below itself, and a name may be empty: who walks downwards would find
// no end.
constexpr const char* kSelectKeys =
    "SELECT folded, name, class, id, EXISTS (SELECT 1 FROM keys AS below WHERE below.parent = keys.id) "
    "FROM keys WHERE parent = ?1 AND folded >= ?2 AND id > 0 AND unicode(name) > 0 "
    "ORDER BY folded LIMIT ?4 OFFSET ?3";
constexpr const char* kSelectValues =
    "SELECT folded, name, type, data FROM vals WHERE key = ?1 AND folded >= ?2 ORDER BY folded "
    "LIMIT ?4 OFFSET ?3";

// A walk over many keys comes to their values in the order of their rows, as long as the keys were made in
// the order of the walk. Once it does, the values of some keys are read at a time.
struct ValuesAhead {
    std::uint64_t change = 0; // RegistryChange
    std::int64_t asked = kNoKey;
    std::int64_t first = kNoKey; // all values of the keys from this one to the last are here
    std::int64_t last = kNoKey;
    std::deque<std::pair<std::int64_t, ListedValue>> values;
};
ValuesAhead ahead;

bool ReadAhead(Store& store, std::int64_t key) {
    ahead.change = 0;
    ahead.values.clear();
    Statement select(store.connection,
                     "SELECT folded, name, type, data, key FROM vals WHERE key >= ?1 ORDER BY key, folded");
    select.Bind(key);
    std::size_t bytes = 0;
    std::int64_t reached = key;
    bool more = false;
    while (bytes < kStretchBytes && ahead.values.size() < kStretchItems && (more = select.Row())) {
        reached = select.Number(4);
        bytes += ahead.values.emplace_back(reached, ListedValue(select)).second.Bytes().size();
    }
    if (select.Failed())
        return false;
    ahead.first = key;
    ahead.last = more ? reached - 1 : std::numeric_limits<std::int64_t>::max();
    ahead.change = RegistryChange(store);
    return true;
}

// Hands out what was read ahead for a key. False when that is not all that it has.
bool TakeAhead(Store& store, std::int64_t key, Stretch<ListedValue>& values) {
    const bool goesOn = key == ahead.asked + 1;
    ahead.asked = key;
    const bool here = ahead.change == RegistryChange(store) && key >= ahead.first && key <= ahead.last;
    if (!here && (!goesOn || !ReadAhead(store, key) || key > ahead.last))
        return false;
    ahead.first = key + 1;
    values.items.clear();
    while (!ahead.values.empty() && ahead.values.front().first <= key) {
        if (ahead.values.front().first == key)
            values.items.push_back(std::move(ahead.values.front().second));
        ahead.values.pop_front();
    }
    values.first = 0;
    values.reachesEnd = true;
    values.change = ahead.change;
    values.ownChange = OwnRegistryChange();
    return true;
}

bool ReadValues(Store& store, OpenKey& key, DWORD index) {
    return (index == 0 && TakeAhead(store, key.id, key.values)) ||
           ReadStretch(store, kSelectValues, key.id, index, key.values);
}

// An item of a stretch, which `read` first reads from there on when it lies elsewhere.
template <typename Item, typename Read>
const Item* ItemAt(Store& store, DWORD index, Stretch<Item>& stretch, Read read) {
    // A key is not torn by another process: its values are those that were there at the first of them.
    const bool goesOn = std::is_same_v<Item, ListedValue> && index > 0 && stretch.change != 0 &&
                        stretch.first == 0 && stretch.reachesEnd && stretch.ownChange == OwnRegistryChange();
    const bool current = goesOn || stretch.change == RegistryChange(store);
    const Item* item = current ? stretch.Find(index) : nullptr;
    const bool beyond = current && stretch.reachesEnd && index >= stretch.first;
    if (!item && !beyond) {
        if (!read())
            return nullptr;
        item = stretch.Find(index);
    }
    if (!item)
        SetLastError(ERROR_NO_MORE_ITEMS);
    return item;
}

} // namespace

ListedKey::ListedKey(const Statement& row)
    : id(row.Number(3)), folded(row.Text(0)), name(row.Text(1)), keyClass(row.Text(2)),
      hasKeys(row.Number(4) != 0) {}

ListedValue::ListedValue(const Statement& row)
    : type(static_cast<DWORD>(row.Number(2))), foldedLength(row.AppendTo(units, 0) / sizeof(char16_t)),
      nameLength(row.AppendTo(units, 1) / sizeof(char16_t)), size(row.AppendTo(units, 3)) {}

const ListedKey* KeyAt(Store& store, OpenKey& key, DWORD index) {
    const ListedKey* const item = ItemAt(
        store, index, key.keys, [&] { return ReadStretch(store, kSelectKeys, key.id, index, key.keys); });
    if (item)
        RememberChild(store, key.id, *item); // which is likely to be opened next
    return item;
}

const ListedValue* ValueAt(Store& store, OpenKey& key, DWORD index) {
    return ItemAt(
        store, index, key.values, [&] { return ReadValues(store, key, index); });
}

bool FindValue(Store& store, OpenKey& key, std::u16string_view folded,
               void (*take)(void* context, DWORD type, std::string_view bytes), void* context) {
    Stretch<ListedValue>& known = key.values;
    if (known.change != RegistryChange(store) && !ReadValues(store, key, 0))
        return false;
    const auto found = std::find_if(known.items.begin(), known.items.end(),
                                    [&](const ListedValue& value) { return value.Folded() == folded; });
    if (found != known.items.end()) {
        take(context, found->type, found->Bytes());
        return true;
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    if (known.first == 0 && known.reachesEnd)
        return false;
    Statement select(store.connection, "SELECT type, data FROM vals WHERE key = ?1 AND folded = ?2");
    if (!select.Bind(key.id).BindText(folded).Row())
        return false;
    take(context, static_cast<DWORD>(select.Number(0)), select.Bytes(1));
    return true;
}

} // namespace storage
