// Reading the registry's rows. Whoever asks for one is likely to ask for those behind it, so they are read
// some at a time.
#include <algorithm>

#include "platform/errors.h"
#include "platform/storage/registrykeys.h"
#include "platform/storage/registrypaths.h"

namespace storage {

namespace {

constexpr std::int64_t kStretchItems = 64;
constexpr std::size_t kStretchBytes = 64 * 1024; // from here on no further value is read ahead

void ReadItem(const Statement& row, ListedKey& item, std::size_t&) {
    item = {row.Number(3), std::u16string(row.Text(0)), std::u16string(row.Text(1)),
            std::u16string(row.Text(2))};
}

void ReadItem(const Statement& row, ListedValue& item, std::size_t& bytes) {
    item = {std::u16string(row.Text(0)), std::u16string(row.Text(1)), static_cast<DWORD>(row.Number(2)),
            std::string(row.Bytes(3))};
    bytes += item.bytes.size();
}

// Reads the items from an index on, with a statement that yields those from the folded name ?2 on, the first
// ?3 of them left out and at most ?4. Where the last stretch ended it goes on from its last name; from
// elsewhere the index is counted out.
template <typename Item>
bool ReadStretch(Store& store, const char* sql, std::int64_t key, DWORD index, Stretch<Item>& stretch) {
    const std::uint64_t change = RegistryChange(store);
    const bool follows =
        stretch.change == change && !stretch.items.empty() && index - stretch.first == stretch.items.size();
    const std::u16string from = follows ? stretch.items.back().folded : std::u16string();
    stretch.change = 0;
    stretch.items.clear();
    Statement select(store.connection, sql);
    select.Bind(key).BindText(from).Bind(follows ? 1 : index).Bind(kStretchItems);
    std::size_t bytes = 0;
    while (bytes < kStretchBytes && select.Row())
        ReadItem(select, stretch.items.emplace_back(), bytes);
    if (select.Failed())
        return false;
    stretch.first = index;
    stretch.reachesEnd = bytes < kStretchBytes && stretch.items.size() < kStretchItems;
    stretch.change = change;
    return true;
}

template <typename Item>
const Item* ItemAt(Store& store, const char* sql, std::int64_t key, DWORD index, Stretch<Item>& stretch) {
    const bool current = stretch.change == RegistryChange(store);
    const Item* item = current ? stretch.Find(index) : nullptr;
    const bool beyond = current && stretch.reachesEnd && index >= stretch.first;
    if (!item && !beyond) {
        if (!ReadStretch(store, sql, key, index, stretch))
            return nullptr;
        item = stretch.Find(index);
    }
    if (!item)
        SetLastError(ERROR_NO_MORE_ITEMS);
    return item;
}

} // namespace

const ListedKey* KeyAt(Store& store, OpenKey& key, DWORD index) {
    const ListedKey* const item =
        ItemAt(store,
               "SELECT folded, name, class, id FROM keys WHERE parent = ?1 AND folded >= ?2 ORDER BY folded "
               "LIMIT ?4 OFFSET ?3",
               key.id, index, key.keys);
    if (item)
        RememberChild(store, key.id, item->folded, item->id); // which is likely to be opened next
    return item;
}

constexpr const char* kSelectValues =
    "SELECT folded, name, type, data FROM vals WHERE key = ?1 AND folded >= ?2 ORDER BY folded "
    "LIMIT ?4 OFFSET ?3";

const ListedValue* ValueAt(Store& store, OpenKey& key, DWORD index) {
    return ItemAt(store, kSelectValues, key.id, index, key.values);
}

bool FindValue(Store& store, OpenKey& key, std::u16string_view folded,
               void (*take)(void* context, DWORD type, std::string_view bytes), void* context) {
    Stretch<ListedValue>& known = key.values;
    if (known.change != RegistryChange(store) && !ReadStretch(store, kSelectValues, key.id, 0, known))
        return false;
    const auto found = std::find_if(known.items.begin(), known.items.end(),
                                    [&](const ListedValue& value) { return value.folded == folded; });
    if (found != known.items.end()) {
        take(context, found->type, found->bytes);
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
