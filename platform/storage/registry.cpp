// The registry's keys and values, in two tables of the store. The main keys are parents that need no row.
#include "platform/registry.h"

#include "platform/base/outofmemory.h"
#include "platform/errors.h"
#include "platform/storage/fold.h"
#include "platform/storage/registrykeys.h"
#include "platform/storage/registrypaths.h"

namespace storage {
namespace {

constexpr std::size_t kLongestPath = 259;
constexpr std::size_t kLongestValueName = 259;
constexpr std::size_t kLongestClass = 259;
constexpr DWORD kLargestValue = 1 << 20;

int openKeys = 0; // that the program holds

LONG Fail(DWORD error) {
    SetLastError(error);
    return static_cast<LONG>(error);
}

LONG FailAsSet() {
    return static_cast<LONG>(GetLastError());
}

LONG AsSet(bool done) {
    return done ? static_cast<LONG>(ERROR_SUCCESS) : FailAsSet();
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

enum class Gathering { Goes, GoesOn }; // what becomes of what is gathered through the key

// Runs a call on an open key.
template <typename Call>
LONG WithKey(HKEY key, Gathering gathering, Call call) {
    return UnlessOutOfMemory(
        static_cast<LONG>(ERROR_NOT_ENOUGH_MEMORY),
        [&]() -> LONG {
            Store* store = TheStore();
            if (!store)
                return FailAsSet();
            OpenKey* open = FindKey(key);
            if (!open)
                return Fail(ERROR_INVALID_HANDLE);
            if (!WriteGathered(*store, gathering == Gathering::GoesOn ? open : nullptr))
                return FailAsSet();
            if (openKeys > 0)
                store->BeginReading();
            return call(*store, *open);
        });
}
template <typename Call>
LONG WithKey(HKEY key, Call call) {
    return WithKey(key, Gathering::Goes, call);
}

std::unique_ptr<OpenKey> MakeOpenKey(std::int64_t id, std::size_t pathLength) {
    auto open = std::make_unique<OpenKey>();
    open->id = id;
    open->pathLength = pathLength;
    return open;
}

HKEY AddOpenKey(std::unique_ptr<OpenKey> open) {
    const HKEY handle = AddKernelObject(std::move(open));
    ++openKeys;
    return handle;
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

// Copies what a value holds: its type and its bytes.
LONG GiveValue(DWORD valueType, std::string_view bytes, DWORD* type, BYTE* data, DWORD* size) {
    if (type)
        *type = valueType;
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

// What nothing can be written to says so at once, and not when what is gathered is written.
bool MayChange(const Store& store) {
    if (store.readOnlyError != ERROR_SUCCESS)
        SetLastError(store.readOnlyError);
    return store.readOnlyError == ERROR_SUCCESS;
}

LONG OpenPath(Store& store, const OpenKey& key, std::u16string_view path, HKEY* opened) {
    std::size_t length = key.pathLength;
    if (!opened || MeasurePath(path, length) != ERROR_SUCCESS)
        return Fail(ERROR_INVALID_PARAMETER);
    const std::int64_t id = FindPath(store, key.id, path);
    if (id == kNoKey)
        return FailAsSet();
    std::unique_ptr<OpenKey> open = MakeOpenKey(id, length);
    if (IsKnownLeaf(store, id)) {
        open->keys.change = RegistryChange(store);
        open->keys.reachesEnd = true;
    }
    *opened = AddOpenKey(std::move(open));
    return ERROR_SUCCESS;
}

LONG CreatePath(Store& store, const OpenKey& key, std::u16string_view path, std::u16string_view keyClass,
                HKEY* opened, DWORD* disposition) {
    std::size_t length = key.pathLength;
    if (!opened || MeasurePath(path, length) != ERROR_SUCCESS || keyClass.size() > kLongestClass)
        return Fail(ERROR_INVALID_PARAMETER);
    const std::int64_t id = FindPath(store, key.id, path);
    const bool found = id != kNoKey;
    if (!found && GetLastError() != ERROR_FILE_NOT_FOUND)
        return FailAsSet();
    if (!found && length > kLongestPath)
        return Fail(ERROR_FILENAME_EXCED_RANGE); // whoever reads a path has room for no more
    if (!found && !MayChange(store))
        return FailAsSet();
    std::unique_ptr<OpenKey> open = MakeOpenKey(id, length);
    OpenKey& made = *open;
    *opened = AddOpenKey(std::move(open));
    if (!found)
        GatherKey(made, key.id, path, keyClass);
    if (disposition)
        *disposition = found ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    return ERROR_SUCCESS;
}

// A main key is never closed, so what is changed through it is written at once.
LONG ChangeValue(Store& store, HKEY handle, OpenKey& key, ValueChange change) {
    if (!MayChange(store))
        return FailAsSet();
    GatherChange(key, std::move(change));
    if (!IsMainKey(handle) || WriteGatheredThrough(store, key))
        return ERROR_SUCCESS;
    GiveUpGathered(key);
    return FailAsSet();
}

// Values that are set together are one step: when one is not taken, none of those before it is written.
LONG NoteTaken(HKEY key, LONG result) {
    OpenKey* const open = FindKey(key);
    if (open && open->gathered)
        open->gathered->refusal = static_cast<DWORD>(result);
    return result;
}

LONG CloseKey(HKEY key) {
    LONG result = ERROR_SUCCESS;
    if (!IsMainKey(key)) {
        if (!FindKernelObject<OpenKey>(key))
            return Fail(ERROR_INVALID_HANDLE);
        --openKeys;
        result = AsSet(CloseKernelObject(key));
    }
    // Whoever writes many keys holds another one open meanwhile: bringing each to the disk takes its time.
    Store* store = openKeys == 0 ? StoreIfOpen() : nullptr;
    if (store) {
        store->EndReading();
        ForgetRead();
    }
    return store && !store->Sync() ? FailAsSet() : result;
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
    return UnlessOutOfMemory(
        static_cast<LONG>(ERROR_NOT_ENOUGH_MEMORY), [=] { return CloseKey(key); });
}

LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    return WithKey(
        key,
        [&](Store& store, OpenKey& open) {
            LONG result = ERROR_SUCCESS;
            const bool found = FindValue(
                store, open, Fold(View(name)),
                [&](DWORD held, std::string_view bytes) {
                    result = GiveValue(held, bytes, type, data, size);
                });
            return found ? result : FailAsSet();
        });
}

LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    return NoteTaken(key, WithKey(
                              key, Gathering::GoesOn,
                              [&](Store& store, OpenKey& open) {
                                  if ((size != 0 && !data) || size > kLargestValue ||
                                      View(name).size() > kLongestValueName)
                                      return Fail(ERROR_INVALID_PARAMETER);
                                  return ChangeValue(store, key, open,
                                                     {Fold(View(name)), std::u16string(View(name)), type,
                                                      std::string(reinterpret_cast<const char*>(data), size),
                                                      false});
                              }));
}

LONG RegDeleteValueW(HKEY key, const WCHAR* name) {
    return WithKey(
        key, Gathering::GoesOn,
        [&](Store& store, OpenKey& open) {
            const std::u16string folded = Fold(View(name));
            return ValueWillExist(store, open, folded)
                       ? ChangeValue(store, key, open, {folded, {}, 0, {}, true})
                       : FailAsSet();
        });
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, WCHAR* keyClass,
                   DWORD* classLength, FILETIME*) {
    return WithKey(
        key,
        [&](Store& store, OpenKey& open) {
            if (!name || !nameLength || (keyClass && !classLength))
                return Fail(ERROR_INVALID_PARAMETER);
            const ListedKey* const listed = KeyAt(store, open, index);
            if (!listed)
                return FailAsSet();
            const bool fits = GiveText(listed->name, name, nameLength) &&
                              (!keyClass || GiveText(listed->keyClass, keyClass, classLength));
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
            const ListedValue* const listed = ValueAt(store, open, index);
            if (!listed)
                return FailAsSet();
            if (!GiveText(listed->Name(), name, nameLength))
                return Fail(ERROR_MORE_DATA);
            return GiveValue(listed->type, listed->Bytes(), type, data, size);
        });
}
