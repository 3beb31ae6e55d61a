#include "platform/storage/registrypaths.h"

#include <algorithm>

#include "platform/errors.h"
#include "platform/storage/fold.h"

namespace storage {

namespace {

constexpr std::size_t kLongestKeyName = 255;

// Takes the first part off a path. Empty when none is left.
std::u16string_view NextPart(std::u16string_view& path) {
    while (!path.empty() && path.front() == u'\\')
        path.remove_prefix(1);
    const std::u16string_view part = path.substr(0, path.find(u'\\'));
    path.remove_prefix(part.size());
    return part;
}

// The keys on the way to the one that was found last, for neighbours have most of it in common. No call takes
// a key away, so they hold until another process changes something.
struct Step {
    std::int64_t parent;
    std::u16string folded;
    std::int64_t id;
    std::uint64_t leafAt; // RegistryChange when it had no keys below it; 0: it is not known to have none
};
struct Way {
    std::uint64_t epoch = 0;
    std::vector<Step> steps;
};
Way way;

// What was looked for in vain last: it is likely to be made next.
struct Missing {
    std::uint64_t change = 0; // RegistryChange
    std::int64_t parent = kNoKey;
    std::u16string folded;
};
Missing missing;

void Remember(const Store& store, const Step& found) {
    const auto isParent = [&](const Step& step) { return step.id == found.parent; };
    const auto last = std::find_if(way.steps.begin(), way.steps.end(), isParent);
    const bool goesOn = way.epoch == store.epoch && last != way.steps.end();
    way.epoch = store.epoch;
    way.steps.resize(goesOn ? static_cast<std::size_t>(last - way.steps.begin()) + 1 : 0);
    way.steps.push_back(found);
}

// kNoKey with the last error set when there is none.
std::int64_t FindChild(Store& store, std::int64_t parent, std::u16string_view name) {
    const std::u16string folded = Fold(name);
    if (way.epoch == store.epoch)
        for (const Step& step : way.steps)
            if (step.parent == parent && step.folded == folded)
                return step.id;
    const std::uint64_t change = RegistryChange(store);
    if (missing.change == change && missing.parent == parent && missing.folded == folded) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return kNoKey;
    }
    Statement select(store.connection, "SELECT id FROM keys WHERE parent = ?1 AND folded = ?2 AND id > 0");
    if (select.Bind(parent).BindText(folded).Row()) {
        const std::int64_t id = select.Number(0);
        Remember(store, {parent, folded, id, 0});
        return id;
    }
    if (!select.Failed()) {
        missing = {change, parent, folded};
        SetLastError(ERROR_FILE_NOT_FOUND);
    }
    return kNoKey;
}

std::int64_t MakeChild(Store& store, std::int64_t parent, std::u16string_view name,
                       std::u16string_view keyClass) {
    const std::u16string folded = Fold(name);
    missing.change = 0;
    Statement insert(store.connection,
                     "INSERT INTO keys (parent, name, folded, class) VALUES (?1, ?2, ?3, ?4)");
    insert.Bind(parent).BindText(name).BindText(folded).BindText(keyClass);
    return insert.Run() ? store.connection.LastInserted() : kNoKey;
}

} // namespace

DWORD MeasurePath(std::u16string_view path, std::size_t& length) {
    for (std::u16string_view part = NextPart(path); !part.empty(); part = NextPart(path)) {
        if (part.size() > kLongestKeyName)
            return ERROR_INVALID_PARAMETER;
        length += (length != 0 ? 1 : 0) + part.size();
    }
    return ERROR_SUCCESS;
}

std::int64_t FindPath(Store& store, std::int64_t key, std::u16string_view path) {
    for (std::u16string_view part = NextPart(path); key != kNoKey && !part.empty(); part = NextPart(path))
        key = FindChild(store, key, part);
    return key;
}

std::int64_t MakePath(Store& store, std::int64_t parent, std::u16string_view path,
                      std::u16string_view keyClass) {
    std::int64_t key = parent;
    std::u16string_view rest = path;
    for (std::u16string_view part = NextPart(rest); key != kNoKey && !part.empty();) {
        const std::u16string_view next = NextPart(rest);
        const std::int64_t child = FindChild(store, key, part);
        if (child == kNoKey && GetLastError() != ERROR_FILE_NOT_FOUND)
            return kNoKey;
        key = child != kNoKey ? child
                              : MakeChild(store, key, part, next.empty() ? keyClass : std::u16string_view());
        part = next;
    }
    return key;
}

void RememberChild(const Store& store, std::int64_t parent, const ListedKey& child) {
    Remember(store, {parent, child.folded, child.id, child.hasKeys ? 0 : RegistryChange(store)});
}

void ForgetWay() {
    way.steps.clear();
}

bool IsKnownLeaf(const Store& store, std::int64_t key) {
    return !way.steps.empty() && way.steps.back().id == key &&
           way.steps.back().leafAt == RegistryChange(store);
}

} // namespace storage
