// The object store's calls on whole databases.
#include <algorithm>
#include <cstring>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include "platform/base/outofmemory.h"
#include "platform/device.h"
#include "platform/errors.h"
#include "platform/objectstore.h"
#include "platform/storage/deletion.h"
#include "platform/storage/fold.h"
#include "platform/storage/opendatabase.h"
#include "platform/storage/sortkey.h"

namespace storage {
namespace {

struct Enumeration final : KernelObject {
    std::vector<CEOID> databases;
    std::size_t next = 0;
};

// The length of a name; 0, with the last error set, when it is no name for a database.
std::size_t NameLength(const WCHAR* name) {
    std::size_t length = 0;
    while (name && length < CEDB_MAXDBASENAMELEN && name[length] != 0)
        ++length;
    if (length == 0 || length == CEDB_MAXDBASENAMELEN) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return length;
}

// Whether no other database than `self` has a name. False with the last error set.
bool NameIsFree(Store& store, std::u16string_view name, CEOID self) {
    const DatabaseRow* row = store.catalogue.FindByName(name);
    if (row && row->oid != self) {
        SetLastError(ERROR_DUP_NAME);
        return false;
    }
    return row || GetLastError() == ERROR_FILE_NOT_FOUND;
}

// Writes the keys of all records anew, after the sort orders changed.
bool WriteAllSortKeys(Store& store, const DatabaseRow& row) {
    if (!DeleteSortKeys(store, row.oid))
        return false;
    Statement select(store.connection,
                     "SELECT id, properties, data FROM records WHERE id >= ?1 AND id <= ?2");
    select.Bind(RecordRow(row.oid, 0)).Bind(RecordRow(row.oid, kNoRecord));
    while (select.Row()) {
        for (WORD order = 0; order < row.info.wNumSortOrder; ++order) {
            const std::string key =
                SortKey(row.info.rgSortSpecs[order], static_cast<WORD>(select.Number(1)), select.Bytes(2));
            Statement insert(store.connection, "INSERT INTO sortkeys VALUES (?1, ?2, ?3)");
            insert.Bind(SortOrderNumber(row.oid, order)).BindBytes(key);
            if (!insert.Bind(static_cast<CEOID>(select.Number(0))).Run())
                return false;
        }
    }
    return !select.Failed();
}

bool SameSortOrders(const CEDBASEINFO& one, const CEDBASEINFO& other) {
    return one.wNumSortOrder == other.wNumSortOrder &&
           std::memcmp(one.rgSortSpecs, other.rgSortSpecs, one.wNumSortOrder * sizeof(SORTORDERSPEC)) == 0;
}

void TakeSortOrders(CEDBASEINFO& info, WORD count, const SORTORDERSPEC* specs) {
    info.wNumSortOrder = count;
    std::fill(std::begin(info.rgSortSpecs), std::end(info.rgSortSpecs), SORTORDERSPEC{});
    std::copy_n(specs, count, info.rgSortSpecs);
}

// The row as the valid members of `info` make it. False with the last error set.
bool TakeInfo(Store& store, const CEDBASEINFO& info, bool reorder, DatabaseRow& row) {
    row.info.ftLastModified = Now();
    if ((info.dwFlags & CEDB_VALIDNAME) != 0) {
        const std::u16string_view name(info.szDbaseName, NameLength(info.szDbaseName));
        if (!NameIsFree(store, name, row.oid))
            return false;
        std::fill(std::begin(row.info.szDbaseName), std::end(row.info.szDbaseName), u'\0');
        name.copy(row.info.szDbaseName, name.size());
    }
    if ((info.dwFlags & CEDB_VALIDTYPE) != 0)
        row.info.dwDbaseType = info.dwDbaseType;
    if (reorder)
        TakeSortOrders(row.info, info.wNumSortOrder, info.rgSortSpecs);
    return true;
}

bool ChangeInfo(Store& store, CEOID oid, const CEDBASEINFO& info, bool reorder) {
    DatabaseRow row;
    if (!InTransaction(store, [&] {
            const DatabaseRow* found = store.catalogue.Find(oid);
            if (!found)
                return false;
            row = *found;
            return TakeInfo(store, info, reorder, row) && store.catalogue.StoreAll(row) &&
                   (!reorder || WriteAllSortKeys(store, row));
        }))
        return false;
    store.AfterCommit([&] { store.catalogue.Keep(row); });
    return store.Sync();
}

// The index of the sort order on a property, -1 for property 0, -2 when there is none.
int FindSortOrder(const CEDBASEINFO& info, CEPROPID property) {
    if (property == 0)
        return -1;
    for (int order = 0; order < info.wNumSortOrder; ++order)
        if (info.rgSortSpecs[order].propid == property)
            return order;
    return -2;
}

// While it lives nobody has the database open.
class AloneWith {
public:
    AloneWith(Store& store, CEOID database) : store(store), database(database) {
        had = store.KeepLocks() && store.locks.HoldAlone(database);
    }
    AloneWith(const AloneWith&) = delete;
    AloneWith& operator=(const AloneWith&) = delete;
    ~AloneWith() {
        if (had) {
            const DWORD cause = GetLastError();
            store.locks.ReleaseAlone(database);
            SetLastError(cause);
        }
    }
    // False with the last error set.
    bool Had() const { return had; }

private:
    Store& store;
    CEOID database;
    bool had;
};

HANDLE FindFirst(DWORD type) {
    Store* store = TheStore();
    if (!store)
        return INVALID_HANDLE_VALUE;
    auto enumeration = std::make_unique<Enumeration>();
    Statement select(store->connection, "SELECT oid FROM databases WHERE ?1 = 0 OR type = ?1 ORDER BY oid");
    select.Bind(type);
    while (select.Row())
        enumeration->databases.push_back(static_cast<CEOID>(select.Number(0)));
    return select.Failed() ? INVALID_HANDLE_VALUE : AddKernelObject(std::move(enumeration));
}

CEOID Create(std::u16string_view name, DWORD type, WORD sortOrders, const SORTORDERSPEC* specs, DWORD flags) {
    Store* store = TheStore();
    if (!store)
        return 0;
    DatabaseRow row;
    row.info.dwFlags = kAllInfoValid;
    name.copy(row.info.szDbaseName, name.size());
    row.info.dwDbaseType = type;
    TakeSortOrders(row.info, sortOrders, specs);
    const bool unfinished = (flags & CEDB_UNFINISHED) != 0;
    if (unfinished)
        store->locks.SetTidy(false); // so that the next opening looks for it
    if (!InTransaction(*store, [&] {
            if (!NameIsFree(*store, name, 0))
                return false;
            row.oid = store->NewIdentifier();
            row.info.ftLastModified = Now();
            return row.oid != 0 && store->catalogue.Insert(row) &&
                   (!unfinished || MarkUnfinished(*store, row.oid));
        }))
        return 0;
    store->AfterCommit([&] { store->catalogue.Keep(row); });
    return store->Sync() ? row.oid : 0;
}

HANDLE Open(CEOID* oid, const WCHAR* name, CEPROPID sort, HWND notify) {
    Store* store = TheStore();
    if (!store)
        return INVALID_HANDLE_VALUE;
    const DatabaseRow* row = *oid != 0 ? store->catalogue.Find(*oid) : store->catalogue.FindByName(name);
    if (!row)
        return INVALID_HANDLE_VALUE;
    const CEOID database = row->oid;
    Holding holding(*store);
    if (!store->KeepLocks() || !holding.Take(database))
        return INVALID_HANDLE_VALUE;
    // It may have been deleted just before it was held.
    store->Refresh();
    row = store->catalogue.Find(database);
    if (!row)
        return INVALID_HANDLE_VALUE;
    const int order = FindSortOrder(row->info, sort);
    if (order < -1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    auto open = std::make_unique<OpenDatabase>(*store, holding, *row, order, notify);
    if (notify && !open->StartWatching())
        return INVALID_HANDLE_VALUE;
    const HANDLE handle = AddKernelObject(std::move(open));
    *oid = database;
    return handle;
}

BOOL SetInfo(CEOID oid, const CEDBASEINFO& info) {
    Store* store = TheStore();
    const DatabaseRow* row = store ? store->catalogue.Find(oid) : nullptr;
    if (!row)
        return FALSE;
    if ((info.dwFlags & CEDB_VALIDSORTSPEC) == 0 || SameSortOrders(row->info, info))
        return ChangeInfo(*store, oid, info, false) ? TRUE : FALSE;
    // Handles rely on the orders as they are: nobody may have the database open.
    const AloneWith alone(*store, oid);
    return alone.Had() && ChangeInfo(*store, oid, info, true) ? TRUE : FALSE;
}

} // namespace
} // namespace storage

using namespace storage;

HANDLE CeFindFirstDatabase(DWORD type) {
    return UnlessOutOfMemory(
        INVALID_HANDLE_VALUE, [&] { return FindFirst(type); });
}

CEOID CeFindNextDatabase(HANDLE handle) {
    Enumeration* enumeration = FindKernelObject<Enumeration>(handle);
    if (!enumeration) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (enumeration->next == enumeration->databases.size()) {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return 0;
    }
    return enumeration->databases[enumeration->next++];
}

BOOL CeOidGetInfo(CEOID oid, CEOIDINFO* info) {
    return UnlessOutOfMemory(
        FALSE,
        [&] {
            Store* store = TheStore();
            const DatabaseRow* row = store ? store->catalogue.Find(oid) : nullptr;
            if (!row)
                return FALSE;
            info->wObjType = OBJTYPE_DATABASE;
            info->wPad = 0;
            info->infDatabase = row->info;
            return TRUE;
        });
}

CEOID CeCreateDatabase(const WCHAR* name, DWORD type, WORD sortOrders, const SORTORDERSPEC* specs,
                       DWORD flags) {
    const std::size_t length = NameLength(name);
    if (length == 0)
        return 0;
    if (sortOrders > CEDB_MAXSORTORDER || (sortOrders != 0 && !specs) || (flags & ~CEDB_UNFINISHED) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return UnlessOutOfMemory(CEOID{0}, [&] {
        return Create({name, length}, type, sortOrders, specs, flags);
    });
}

BOOL CeFinishDatabase(CEOID oid) {
    return UnlessOutOfMemory(
        FALSE,
        [&] {
            Store* store = TheStore();
            return store && store->catalogue.Find(oid) && FinishDatabase(*store, oid) ? TRUE : FALSE;
        });
}

HANDLE CeOpenDatabase(CEOID* oid, const WCHAR* name, CEPROPID sort, DWORD flags, HWND notify) {
    if (!oid || flags != 0 || (*oid == 0 && NameLength(name) == 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    return UnlessOutOfMemory(INVALID_HANDLE_VALUE, [&] { return Open(oid, name, sort, notify); });
}

BOOL CeSetDatabaseInfo(CEOID oid, const CEDBASEINFO* info) {
    if (((info->dwFlags & CEDB_VALIDNAME) != 0 && NameLength(info->szDbaseName) == 0) ||
        ((info->dwFlags & CEDB_VALIDSORTSPEC) != 0 && info->wNumSortOrder > CEDB_MAXSORTORDER)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return UnlessOutOfMemory(FALSE, [&] { return SetInfo(oid, *info); });
}

BOOL CeDeleteDatabase(CEOID oid) {
    return UnlessOutOfMemory(
        FALSE,
        [&] {
            Store* store = TheStore();
            if (!store || !store->catalogue.Find(oid))
                return FALSE;
            const AloneWith alone(*store, oid);
            return alone.Had() && DeleteDatabase(*store, oid) ? TRUE : FALSE;
        });
}

BOOL GetStoreInformation(STORE_INFORMATION* information) {
    struct statvfs system {};
    struct stat file {};
    if (statvfs(DeviceFolder().c_str(), &system) != 0 || stat(DeviceStorePath().c_str(), &file) != 0) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    constexpr std::uint64_t kMost = 0xFFFFFFFF;
    const std::uint64_t freeBytes = std::uint64_t{system.f_bavail} * system.f_frsize;
    const std::uint64_t usedBytes = std::min(static_cast<std::uint64_t>(file.st_size), kMost);
    // What the store takes is the difference, also where the disk has more than 32 bits can tell.
    const std::uint64_t storeBytes = std::min(freeBytes + usedBytes, kMost);
    information->dwStoreSize = static_cast<DWORD>(storeBytes);
    information->dwFreeSize = static_cast<DWORD>(storeBytes - usedBytes);
    return TRUE;
}
