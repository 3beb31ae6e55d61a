// Changing the registry. What is changed through an open key is gathered until it is closed or something else
// is asked for, and written in one step: a process that dies leaves a key as it was or as it was to be.
#include <algorithm>

#include "platform/errors.h"
#include "platform/storage/registrykeys.h"
#include "platform/storage/registrypaths.h"

namespace storage {

namespace {

std::uint64_t ownChanges = 1; // of this process; together with the store's epoch it tells of every change

OpenKey* gatherer = nullptr; // the key with what is gathered; there is never more than one

bool WriteChange(Store& store, std::int64_t key, const ValueChange& change) {
    if (change.deleted) {
        Statement remove(store.connection, "DELETE FROM vals WHERE key = ?1 AND folded = ?2");
        return remove.Bind(key).BindText(change.folded).Run();
    }
    Statement write(store.connection,
                    "INSERT INTO vals (key, folded, name, type, data) VALUES (?1, ?2, ?3, ?4, ?5) "
                    "ON CONFLICT (key, folded) DO UPDATE SET type = excluded.type, data = excluded.data");
    return write.Bind(key)
        .BindText(change.folded)
        .BindText(change.name)
        .Bind(change.type)
        .BindBytes(change.bytes)
        .Run();
}

Gathered& GatheredOf(OpenKey& key) {
    if (!key.gathered)
        key.gathered = std::make_unique<Gathered>();
    gatherer = &key;
    return *key.gathered;
}

} // namespace

std::uint64_t RegistryChange(const Store& store) {
    return ownChanges + store.epoch;
}

std::uint64_t OwnRegistryChange() {
    return ownChanges;
}

void ForgetRead() {
    ++ownChanges;
    ForgetWay();
}

void GatherKey(OpenKey& key, std::int64_t parent, std::u16string_view path, std::u16string_view keyClass) {
    Gathered& gathered = GatheredOf(key);
    gathered.parent = parent;
    gathered.path = path;
    gathered.keyClass = keyClass;
}

void GatherChange(OpenKey& key, ValueChange change) {
    GatheredOf(key).changes.push_back(std::move(change));
}

bool ValueWillExist(Store& store, OpenKey& key, std::u16string_view folded) {
    if (key.gathered) {
        const auto& changes = key.gathered->changes;
        const auto last = std::find_if(changes.rbegin(), changes.rend(),
                                       [&](const ValueChange& change) { return change.folded == folded; });
        if (last != changes.rend()) {
            SetLastError(ERROR_FILE_NOT_FOUND); // if it is
            return !last->deleted;
        }
    }
    return FindValue(store, key, folded, [](DWORD, std::string_view) {});
}

bool WriteGathered(Store& store, const OpenKey* except) {
    return !gatherer || gatherer == except || WriteGatheredThrough(store, *gatherer);
}

bool WriteGatheredThrough(Store& store, OpenKey& key) {
    if (!key.gathered)
        return true;
    const Gathered& gathered = *key.gathered;
    if (gathered.refusal != ERROR_SUCCESS) {
        SetLastError(gathered.refusal);
        return false;
    }
    std::int64_t id = key.id;
    const bool written = InTransaction(store, [&] {
        if (!gathered.path.empty())
            id = MakePath(store, gathered.parent, gathered.path, gathered.keyClass);
        return id != kNoKey &&
               std::all_of(gathered.changes.begin(), gathered.changes.end(),
                           [&](const ValueChange& change) { return WriteChange(store, id, change); });
    });
    ++ownChanges;
    if (written) {
        key.id = id;
        GiveUpGathered(key);
    }
    return written;
}

void GiveUpGathered(OpenKey& key) {
    key.gathered.reset();
    gatherer = nullptr;
}

bool OpenKey::Close() {
    if (!gathered)
        return true;
    struct Forgetting {
        OpenKey& key;
        ~Forgetting() { GiveUpGathered(key); }
    } const forgetting{*this};
    Store* const store = TheStore();
    return store && WriteGatheredThrough(*store, *this);
}

} // namespace storage
