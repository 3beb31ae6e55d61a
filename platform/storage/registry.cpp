// The registry's keys and values, in two tables of the store. The main keys are parents that need no row.
#include "platform/registry.h"

#include <algorithm>
#include <cstring>

#include "platform/base/handles.h"
#include "platform/base/outofmemory.h"
#include "platform/errors.h"
#include "platform/storage/fold.h"
#include "platform/storage/registrypaths.h"

namespace storage {
namespace {

constexpr std::size_t kLongestPath = 259;
constexpr std::size_t kLongestValueName = 259;
constexpr std::size_t kLongestClass = 259;
constexpr DWORD kLargestValue = 1 << 20;

// How far an enumeration has come, so that the next index need not be counted out from the first. It holds
// while nothing in the registry changes.
struct Progress {
    DWORD index = 0; // of the item after `folded`
    std::u16string folded;
    std::uint64_t change = 0; // 0: nowhere
};

struct OpenKey : KernelObject {
    std::int64_t id = kNoKey;   // a row, or minus 1 to minus 3 for a main key
    std::size_t pathLength = 0; // below the main key
    Progress keys;
    Progress values;
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

bool IsMainKey(HKEY key) {
    return key >= HKEY_CLASSES_ROOT && key <= HKEY_LOCAL_MACHINE;
}

// Null when it is no open key. The main keys are open for ever.
OpenKey* FindKey(HKEY key) {
    static OpenKey mainKeys[HKEY_LOCAL_MACHINE - HKEY_CLASSES_ROOT + 1];
    if (!IsMainKey(key))
        return FindKernelObject<OpenKey>(key);
    OpenKey& mainKey = mainKeys[key - HKEY_CLASSES_ROOT];
    mainKey.id = -1 - static_cast<std::int64_t>(key - HKEY_CLASSES_ROOT);
    return &mainKey;
}

// Runs a call on an open key.
template <typename Call>
LONG WithKey(HKEY key, Call call) {
    return UnlessOutOfMemory(
        static_cast<LONG>(ERROR_NOT_ENOUGH_MEMORY),
        [&]() -> LONG {
            Store* store = TheStore();
            if (!store)
                return FailAsSet();
            OpenKey* open = FindKey(key);
            return open ? call(*store, *open) : Fail(ERROR_INVALID_HANDLE);
        });
}

HKEY AddOpenKey(std::int64_t id, std::size_t pathLength) {
    auto open = std::make_unique<OpenKey>();
    open->id = id;
    open->pathLength = pathLength;
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
bool StepTo(Statement& select, const Store& store, std::int64_t key, DWORD index, Progress& progress) {
    const bool follows = progress.change == ChangeNow(store) && progress.index == index;
    const std::u16string after = follows ? progress.folded : std::u16string();
    select.Bind(key).BindText(after).Bind(follows ? 0 : index).Bind(follows ? 1 : 0);
    if (!select.Row()) {
        if (!select.Failed())
            SetLastError(ERROR_NO_MORE_ITEMS);
        return false;
    }
    progress = {index + 1, std::u16string(select.Text(0)), ChangeNow(store)};
    return true;
}

LONG OpenPath(Store& store, const OpenKey& key, std::u16string_view path, HKEY* opened) {
    std::size_t length = key.pathLength;
    if (!opened || MeasurePath(path, length) != ERROR_SUCCESS)
        return Fail(ERROR_INVALID_PARAMETER);
    const std::int64_t id = FindPath(store, key.id, path);
    if (id == kNoKey)
        return FailAsSet();
    *opened = AddOpenKey(id, length);
    return ERROR_SUCCESS;
}

LONG CreatePath(Store& store, const OpenKey& key, std::u16string_view path, std::u16string_view keyClass,
                HKEY* opened, DWORD* disposition) {
    std::size_t length = key.pathLength;
    if (!opened || MeasurePath(path, length) != ERROR_SUCCESS || keyClass.size() > kLongestClass)
        return Fail(ERROR_INVALID_PARAMETER);
    std::int64_t id = FindPath(store, key.id, path);
    const bool found = id != kNoKey;
    if (!found && GetLastError() == ERROR_FILE_NOT_FOUND) {
        if (length > kLongestPath)
            return Fail(ERROR_FILENAME_EXCED_RANGE); // whoever reads a path has room for no more
        id = MakePath(store, key.id, path, keyClass);
        ++ownChanges;
    }
    if (id == kNoKey)
        return FailAsSet();
    *opened = AddOpenKey(id, length);
    if (disposition)
        *disposition = found ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    return ERROR_SUCCESS;
}

bool SetValue(Store& store, std::int64_t key, std::u16string_view name, DWORD type, std::string_view bytes) {
    const std::u16string folded = Fold(name);
    const bool set = InTransaction(store, [&] {
        Statement write(store.connection,
                        "INSERT INTO vals (key, folded, name, type, data) VALUES (?1, ?2, ?3, ?4, ?5) "
                        "ON CONFLICT (key, folded) DO UPDATE SET type = excluded.type, data = excluded.data");
        return write.Bind(key).BindText(folded).BindText(name).Bind(type).BindBytes(bytes).Run();
    });
    ++ownChanges;
    return set;
}

bool DeleteValue(Store& store, std::int64_t key, std::u16string_view name) {
    const std::u16string folded = Fold(name);
    const bool deleted = InTransaction(store, [&] {
        Statement remove(store.connection, "DELETE FROM vals WHERE key = ?1 AND folded = ?2");
        if (!remove.Bind(key).BindText(folded).Run())
            return false;
        SetLastError(ERROR_FILE_NOT_FOUND); // unless one was there
        return store.connection.Changes() != 0;
    });
    ++ownChanges;
    return deleted;
}

LONG AsSet(bool done) {
    return done ? static_cast<LONG>(ERROR_SUCCESS) : FailAsSet();
}

} // namespace
} // namespace storage

using namespace storage;

LONG RegOpenKeyExW(HKEY key, const WCHAR* path, DWORD, DWORD, HKEY* opened) {
    return WithKey(
        key, [&](Store& store, const OpenKey& open) { return OpenPath(store, open, View(path), opened); });
}

LONG RegCreateKeyExW(HKEY key, const WCHAR* path, DWORD, const WCHAR* keyClass, DWORD, DWORD, void*,
                     HKEY* opened, DWORD* disposition) {
    return WithKey(
        key,
        [&](Store& store, const OpenKey& open) {
            return CreatePath(store, open, View(path), View(keyClass), opened, disposition);
        });
}

LONG RegCloseKey(HKEY key) {
    if (!IsMainKey(key) && (!FindKernelObject<OpenKey>(key) || !CloseKernelObject(key)))
        return Fail(ERROR_INVALID_HANDLE);
    Store* store = StoreIfOpen();
    return AsSet(!store || store->Sync());
}

LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    return WithKey(
        key,
        [&](Store& store, const OpenKey& open) {
            const std::u16string folded = Fold(View(name));
            Statement select(store.connection, "SELECT type, data FROM vals WHERE key = ?1 AND folded = ?2");
            if (!select.Bind(open.id).BindText(folded).Row())
                return select.Failed() ? FailAsSet() : Fail(ERROR_FILE_NOT_FOUND);
            return GiveValue(select, 0, 1, type, data, size);
        });
}

LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    return WithKey(
        key,
        [&](Store& store, const OpenKey& open) {
            if ((size != 0 && !data) || size > kLargestValue || View(name).size() > kLongestValueName)
                return Fail(ERROR_INVALID_PARAMETER);
            return AsSet(
                SetValue(store, open.id, View(name), type, {reinterpret_cast<const char*>(data), size}));
        });
}

LONG RegDeleteValueW(HKEY key, const WCHAR* name) {
    return WithKey(
        key,
        [&](Store& store, const OpenKey& open) { return AsSet(DeleteValue(store, open.id, View(name))); });
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, WCHAR* keyClass,
                   DWORD* classLength, FILETIME*) {
    return WithKey(
        key,
        [&](Store& store, OpenKey& open) {
            if (!name || !nameLength || (keyClass && !classLength))
                return Fail(ERROR_INVALID_PARAMETER);
            Statement select(store.connection,
                             "SELECT folded, name, class FROM keys WHERE parent = ?1 AND folded >= ?2 "
                             "ORDER BY folded LIMIT 1 OFFSET ?3 + ?4");
            if (!StepTo(select, store, open.id, index, open.keys))
                return FailAsSet();
            const bool fits = GiveText(select.Text(1), name, nameLength) &&
                              (!keyClass || GiveText(select.Text(2), keyClass, classLength));
            return fits ? static_cast<LONG>(ERROR_SUCCESS) : Fail(ERROR_MORE_DATA);
        });
}

LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, DWORD* type, BYTE* data,
                   DWORD* size) {
    return WithKey(
        key,
        [&](Store& store, OpenKey& open) {
            if (!name || !nameLength)
                return Fail(ERROR_INVALID_PARAMETER);
            Statement select(store.connection,
                             "SELECT folded, name, type, data FROM vals WHERE key = ?1 AND folded >= ?2 "
                             "ORDER BY folded LIMIT 1 OFFSET ?3 + ?4");
            if (!StepTo(select, store, open.id, index, open.values))
                return FailAsSet();
            if (!GiveText(select.Text(1), name, nameLength))
                return Fail(ERROR_MORE_DATA);
            return GiveValue(select, 2, 3, type, data, size);
        });
}
