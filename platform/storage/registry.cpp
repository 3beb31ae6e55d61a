// The registry's keys and values, in two tables of the store. The main keys are parents that need no row.
#include "platform/registry.h"

#include <algorithm>
#include <cstring>

#include "platform/base/handles.h"
#include "platform/errors.h"
#include "platform/storage/fold.h"
#include "platform/storage/store.h"

namespace storage {
namespace {

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 259;
constexpr std::size_t kLongestClass = 259;
constexpr DWORD kLargestValue = 1 << 20;
constexpr std::int64_t kNoKey = 0;

// Where an enumeration stands, so that the next index need not be counted out from the first. It holds while
// nothing in the registry changes.
struct EnumerationPlace {
    DWORD index = 0; // of the item after `folded`
    std::u16string folded;
    std::uint64_t change = 0; // 0: nowhere
};

struct OpenKey : KernelObject {
    std::int64_t id = kNoKey; // a row, or minus 1 to minus 3 for a main key
    EnumerationPlace keys;
    EnumerationPlace values;
};

std::uint64_t ownChanges = 1; // of this process; together with the store's epoch it tells of every change

std::uint64_t ChangeNow(const Store& store) {
    return ownChanges + store.epoch;
}

LONG Fail(DWORD error) {
    SetLastError(error);
    return static_cast<LONG>(error);
}

LONG FailAsSet() {
    return static_cast<LONG>(GetLastError());
}

std::u16string_view View(const WCHAR* text) {
    return text ? std::u16string_view(text) : std::u16string_view();
}

std::int64_t KeyId(HKEY key) {
    if (key >= HKEY_CLASSES_ROOT && key <= HKEY_LOCAL_MACHINE)
        return -1 - static_cast<std::int64_t>(key - HKEY_CLASSES_ROOT);
    const OpenKey* open = FindKernelObject<OpenKey>(key);
    return open ? open->id : kNoKey;
}

// The place is kept with an open key; a main key that nobody opened has none.
EnumerationPlace* PlaceOf(HKEY key, bool ofValues) {
    OpenKey* open = FindKernelObject<OpenKey>(key);
    return !open ? nullptr : ofValues ? &open->values : &open->keys;
}

// What every call needs first. Null with the last error set when there is no store or no such open key.
Store* Begin(HKEY key, std::int64_t& id) {
    Store* store = TheStore();
    if (!store)
        return nullptr;
    id = KeyId(key);
    if (id == kNoKey) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return store;
}

// Takes the first part off a path. Empty when none is left.
std::u16string_view NextPart(std::u16string_view& path) {
    while (!path.empty() && path.front() == u'\\')
        path.remove_prefix(1);
    const std::u16string_view part = path.substr(0, path.find(u'\\'));
    path.remove_prefix(part.size());
    return part;
}

bool PathFits(std::u16string_view path) {
    for (std::u16string_view part = NextPart(path); !part.empty(); part = NextPart(path))
        if (part.size() > kLongestKeyName)
            return false;
    return true;
}

// kNoKey with the last error set when there is none.
std::int64_t FindChild(Store& store, std::int64_t parent, std::u16string_view name) {
    const std::u16string folded = Fold(name);
    Statement select(store.connection, "SELECT id FROM keys WHERE parent = ?1 AND folded = ?2");
    if (select.Bind(parent).BindText(folded).Row())
        return select.Number(0);
    if (!select.Failed())
        SetLastError(ERROR_FILE_NOT_FOUND);
    return kNoKey;
}

std::int64_t FindPath(Store& store, std::int64_t key, std::u16string_view path) {
    for (std::u16string_view part = NextPart(path); key != kNoKey && !part.empty(); part = NextPart(path))
        key = FindChild(store, key, part);
    return key;
}

std::int64_t MakeChild(Store& store, std::int64_t parent, std::u16string_view name,
                       std::u16string_view keyClass) {
    const std::u16string folded = Fold(name);
    Statement insert(store.connection,
                     "INSERT INTO keys (parent, name, folded, class) VALUES (?1, ?2, ?3, ?4) RETURNING id");
    insert.Bind(parent).BindText(name).BindText(folded).BindText(keyClass);
    const std::int64_t id = insert.Row() ? insert.Number(0) : kNoKey;
    return insert.Run() ? id : kNoKey;
}

// Makes what is missing of a path, in one step.
std::int64_t MakePath(Store& store, std::int64_t key, std::u16string_view path,
                      std::u16string_view keyClass) {
    WriteTransaction transaction(store);
    if (!transaction.Begun())
        return kNoKey;
    for (std::u16string_view part = NextPart(path); key != kNoKey && !part.empty();) {
        const std::u16string_view next = NextPart(path);
        const std::int64_t child = FindChild(store, key, part);
        if (child == kNoKey && GetLastError() != ERROR_FILE_NOT_FOUND)
            return kNoKey;
        key = child != kNoKey ? child
                              : MakeChild(store, key, part, next.empty() ? keyClass : std::u16string_view());
        part = next;
    }
    ++ownChanges;
    return key != kNoKey && transaction.Commit() ? key : kNoKey;
}

HKEY AddOpenKey(std::int64_t id) {
    auto open = std::make_unique<OpenKey>();
    open->id = id;
    return AddKernelObject(std::move(open));
}

// Copies a text with its terminator. False when it does not fit.
bool GiveText(std::u16string_view text, WCHAR* out, DWORD* length) {
    if (text.size() >= *length)
        return false;
    text.copy(out, text.size());
    out[text.size()] = 0;
    *length = static_cast<DWORD>(text.size());
    return true;
}

// Copies what a value's row holds: its type and its bytes.
LONG GiveValue(const Statement& row, int typeColumn, int dataColumn, DWORD* type, BYTE* data, DWORD* size) {
    const std::string_view bytes = row.Bytes(dataColumn);
    if (type)
        *type = static_cast<DWORD>(row.Number(typeColumn));
    if (!size)
        return data ? Fail(ERROR_INVALID_PARAMETER) : static_cast<LONG>(ERROR_SUCCESS);
    const DWORD room = *size;
    *size = static_cast<DWORD>(bytes.size());
    if (!data)
        return ERROR_SUCCESS;
    if (bytes.size() > room)
        return Fail(ERROR_MORE_DATA);
    bytes.copy(reinterpret_cast<char*>(data), bytes.size());
    return ERROR_SUCCESS;
}

// Steps a statement that yields folded names in order, and starts behind ?2 with ?3 rows left out, to an
// index. Column 0 is the folded name. False at the end or on failure, with the last error set.
bool StepTo(Statement& select, const Store& store, std::int64_t key, DWORD index, EnumerationPlace* place) {
    const bool follows = place && place->change == ChangeNow(store) && place->index == index;
    const std::u16string after = follows ? place->folded : std::u16string();
    select.Bind(key).BindText(after).Bind(follows ? 0 : index).Bind(follows ? 1 : 0);
    if (!select.Row()) {
        if (!select.Failed())
            SetLastError(ERROR_NO_MORE_ITEMS);
        return false;
    }
    if (place)
        *place = {index + 1, std::u16string(select.Text(0)), ChangeNow(store)};
    return true;
}

} // namespace
} // namespace storage

using namespace storage;

LONG RegOpenKeyExW(HKEY key, const WCHAR* path, DWORD, DWORD, HKEY* opened) {
    std::int64_t id = kNoKey;
    Store* store = Begin(key, id);
    if (!store)
        return FailAsSet();
    if (!opened || !PathFits(View(path)))
        return Fail(ERROR_INVALID_PARAMETER);
    id = FindPath(*store, id, View(path));
    if (id == kNoKey)
        return FailAsSet();
    *opened = AddOpenKey(id);
    return ERROR_SUCCESS;
}

LONG RegCreateKeyExW(HKEY key, const WCHAR* path, DWORD, const WCHAR* keyClass, DWORD, DWORD, void*,
                     HKEY* opened, DWORD* disposition) {
    std::int64_t parent = kNoKey;
    Store* store = Begin(key, parent);
    if (!store)
        return FailAsSet();
    if (!opened || !PathFits(View(path)) || View(keyClass).size() > kLongestClass)
        return Fail(ERROR_INVALID_PARAMETER);
    std::int64_t id = FindPath(*store, parent, View(path));
    const bool found = id != kNoKey;
    if (!found && GetLastError() == ERROR_FILE_NOT_FOUND)
        id = MakePath(*store, parent, View(path), View(keyClass));
    if (id == kNoKey)
        return FailAsSet();
    *opened = AddOpenKey(id);
    if (disposition)
        *disposition = found ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    return ERROR_SUCCESS;
}

LONG RegCloseKey(HKEY key) {
    if (KeyId(key) < 0)
        return ERROR_SUCCESS;
    return FindKernelObject<OpenKey>(key) && CloseKernelObject(key) ? static_cast<LONG>(ERROR_SUCCESS)
                                                                    : Fail(ERROR_INVALID_HANDLE);
}

LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    std::int64_t id = kNoKey;
    Store* store = Begin(key, id);
    if (!store)
        return FailAsSet();
    const std::u16string folded = Fold(View(name));
    Statement select(store->connection, "SELECT type, data FROM vals WHERE key = ?1 AND folded = ?2");
    if (!select.Bind(id).BindText(folded).Row())
        return select.Failed() ? FailAsSet() : Fail(ERROR_FILE_NOT_FOUND);
    return GiveValue(select, 0, 1, type, data, size);
}

LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    std::int64_t id = kNoKey;
    Store* store = Begin(key, id);
    if (!store)
        return FailAsSet();
    if ((size != 0 && !data) || size > kLargestValue || View(name).size() > kLongestValueName)
        return Fail(ERROR_INVALID_PARAMETER);
    const std::u16string folded = Fold(View(name));
    WriteTransaction transaction(*store);
    if (!transaction.Begun())
        return FailAsSet();
    Statement write(store->connection,
                    "INSERT INTO vals (key, folded, name, type, data) VALUES (?1, ?2, ?3, ?4, ?5) "
                    "ON CONFLICT (key, folded) DO UPDATE SET type = excluded.type, data = excluded.data");
    write.Bind(id).BindText(folded).BindText(View(name)).Bind(type);
    write.BindBytes({reinterpret_cast<const char*>(data), size});
    ++ownChanges;
    return write.Run() && transaction.Commit() ? static_cast<LONG>(ERROR_SUCCESS) : FailAsSet();
}

LONG RegDeleteValueW(HKEY key, const WCHAR* name) {
    std::int64_t id = kNoKey;
    Store* store = Begin(key, id);
    if (!store)
        return FailAsSet();
    const std::u16string folded = Fold(View(name));
    WriteTransaction transaction(*store);
    if (!transaction.Begun())
        return FailAsSet();
    Statement remove(store->connection, "DELETE FROM vals WHERE key = ?1 AND folded = ?2");
    if (!remove.Bind(id).BindText(folded).Run())
        return FailAsSet();
    if (store->connection.Changes() == 0)
        return Fail(ERROR_FILE_NOT_FOUND);
    ++ownChanges;
    return transaction.Commit() ? static_cast<LONG>(ERROR_SUCCESS) : FailAsSet();
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, WCHAR* keyClass,
                   DWORD* classLength, FILETIME*) {
    std::int64_t id = kNoKey;
    Store* store = Begin(key, id);
    if (!store)
        return FailAsSet();
    if (!name || !nameLength || (keyClass && !classLength))
        return Fail(ERROR_INVALID_PARAMETER);
    Statement select(store->connection,
                     "SELECT folded, name, class FROM keys WHERE parent = ?1 AND folded >= ?2 "
                     "ORDER BY folded LIMIT 1 OFFSET ?3 + ?4");
    if (!StepTo(select, *store, id, index, PlaceOf(key, false)))
        return FailAsSet();
    const bool fits = GiveText(select.Text(1), name, nameLength) &&
                      (!keyClass || GiveText(select.Text(2), keyClass, classLength));
    return fits ? static_cast<LONG>(ERROR_SUCCESS) : Fail(ERROR_MORE_DATA);
}

LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, DWORD* type, BYTE* data,
                   DWORD* size) {
    std::int64_t id = kNoKey;
    Store* store = Begin(key, id);
    if (!store)
        return FailAsSet();
    if (!name || !nameLength)
        return Fail(ERROR_INVALID_PARAMETER);
    Statement select(store->connection,
                     "SELECT folded, name, type, data FROM vals WHERE key = ?1 AND folded >= ?2 "
                     "ORDER BY folded LIMIT 1 OFFSET ?3 + ?4");
    if (!StepTo(select, *store, id, index, PlaceOf(key, true)))
        return FailAsSet();
    if (!GiveText(select.Text(1), name, nameLength))
        return Fail(ERROR_MORE_DATA);
    return GiveValue(select, 2, 3, type, data, size);
}
