// The object store's calls on records.
#include <algorithm>

#include "platform/base/outofmemory.h"
#include "platform/errors.h"
#include "platform/objectstore.h"
#include "platform/storage/opendatabase.h"
#include "platform/storage/recordform.h"
#include "platform/storage/sortkey.h"

namespace storage {
namespace {

constexpr WORD kMostRecords = 0xFFFF;

// Runs a call on an open database. The store is open and refreshed.
template <typename Result, typename Call>
Result WithDatabase(HANDLE handle, Result failure, Call call) {
    return UnlessOutOfMemory(
        failure,
        [&]() -> Result {
            Store* store = TheStore();
            OpenDatabase* open = store ? FindKernelObject<OpenDatabase>(handle) : nullptr;
            if (open)
                return call(*store, *open);
            if (store)
                SetLastError(ERROR_INVALID_PARAMETER);
            return failure;
        });
}

bool ReadStored(Store& store, std::int64_t row, WORD& count, std::string& form) {
    Statement select(store.connection, "SELECT properties, data FROM records WHERE id = ?1");
    if (!select.Bind(row).Row()) {
        if (!select.Failed())
            SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    count = static_cast<WORD>(select.Number(0));
    form = select.Bytes(1);
    return true;
}

bool WriteRow(Store& store, std::int64_t row, const RecordChange& change) {
    if (!change.after)
        return Statement(store.connection, "DELETE FROM records WHERE id = ?1").Bind(row).Run();
    Statement write(store.connection, change.before
                                          ? "UPDATE records SET properties = ?2, data = ?3 WHERE id = ?1"
                                          : "INSERT INTO records VALUES (?1, ?2, ?3)");
    return write.Bind(row).Bind(change.after->count).BindBytes(change.after->form).Run();
}

bool WriteSortKey(Store& store, const char* sql, std::int64_t order, std::string_view key, CEOID record) {
    return Statement(store.connection, sql).Bind(order).BindBytes(key).Bind(record).Run();
}

bool WriteSortKeys(Store& store, const DatabaseRow& row, const RecordChange& change) {
    for (WORD order = 0; order < row.info.wNumSortOrder; ++order) {
        const SORTORDERSPEC& spec = row.info.rgSortSpecs[order];
        const std::int64_t number = SortOrderNumber(row.oid, order);
        const std::string before =
            change.before ? SortKey(spec, change.before->count, change.before->form) : std::string();
        const std::string after =
            change.after ? SortKey(spec, change.after->count, change.after->form) : std::string();
        if (before == after)
            continue;
        if (change.before &&
            !WriteSortKey(store, "DELETE FROM sortkeys WHERE place = ?1 AND key = ?2 AND record = ?3", number,
                          before, change.record))
            return false;
        if (change.after &&
            !WriteSortKey(store, "INSERT INTO sortkeys VALUES (?1, ?2, ?3)", number, after, change.record))
            return false;
    }
    return true;
}

// The row of a database once a record of it is changed.
DatabaseRow CountIn(DatabaseRow row, const RecordChange& change) {
    ++row.version;
    // What a damaged file says may be too little to take anything away from it.
    const std::uint64_t taken = change.before ? change.before->form.size() : 0;
    row.SetBytes(row.bytes - std::min(row.bytes, taken) + (change.after ? change.after->form.size() : 0));
    row.info.ftLastModified = Now();
    if (!change.before)
        ++row.info.wNumRecords;
    if (!change.after) {
        row.info.wNumRecords = std::max<WORD>(row.info.wNumRecords, 1) - 1;
        ++row.deletions;
        row.lastDeleted = change.record;
    }
    return row;
}

// Within a transaction.
bool WriteChange(Store& store, const DatabaseRow& row, const RecordChange& change) {
    return WriteRow(store, RecordRow(row.oid, change.record), change) && WriteSortKeys(store, row, change) &&
           store.catalogue.StoreState(row);
}

// Brings caches and open handles up to what was committed.
void Follow(Store& store, const DatabaseRow& row, const RecordChange& change) {
    store.AfterCommit([&] {
        store.catalogue.Keep(row);
        for (OpenDatabase* open : OpenDatabases())
            if (open->Database() == row.oid)
                open->FollowChange(change, row.version - 1, row.version);
    });
}

CEOID MakeRecord(Store& store, CEOID database, WORD count, const CEPROPVAL* values) {
    std::vector<Property> properties;
    std::string form;
    StoredRecord made;
    if (!ApplyValues(count, values, properties) || !BuildRecord(properties, made.count, form)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    made.form = form;
    RecordChange change{0, nullptr, &made};
    DatabaseRow row;
    if (!InTransaction(store, [&] {
            const DatabaseRow* found = store.catalogue.Find(database);
            if (!found)
                return false;
            if (found->info.wNumRecords == kMostRecords) {
                SetLastError(ERROR_DISK_FULL);
                return false;
            }
            row = CountIn(*found, change);
            change.record = store.NewIdentifier();
            return change.record != 0 && WriteChange(store, row, change);
        }))
        return 0;
    Follow(store, row, change);
    return change.record;
}

// A record's storage form once a caller's values are applied. False with the last error set.
bool ApplyTo(const StoredRecord& old, WORD count, const CEPROPVAL* values, WORD& newCount,
             std::string& newForm) {
    std::vector<Property> properties;
    if (!ParseRecord(old.count, old.form, properties)) {
        SetLastError(ERROR_FILE_CORRUPT);
        return false;
    }
    if (!ApplyValues(count, values, properties) || !BuildRecord(properties, newCount, newForm)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return true;
}

CEOID ChangeRecord(Store& store, CEOID database, CEOID record, WORD count, const CEPROPVAL* values) {
    std::string oldForm;
    std::string newForm;
    StoredRecord old;
    StoredRecord changed;
    const RecordChange change{record, &old, &changed};
    DatabaseRow row;
    if (!InTransaction(store, [&] {
            const DatabaseRow* found = store.catalogue.Find(database);
            if (!found || !ReadStored(store, RecordRow(database, record), old.count, oldForm))
                return false;
            old.form = oldForm;
            if (!ApplyTo(old, count, values, changed.count, newForm))
                return false;
            changed.form = newForm;
            row = CountIn(*found, change);
            return WriteChange(store, row, change);
        }))
        return 0;
    Follow(store, row, change);
    return record;
}

bool DeleteRecord(Store& store, CEOID database, CEOID record) {
    std::string form;
    StoredRecord old;
    const RecordChange change{record, &old, nullptr};
    DatabaseRow row;
    if (!InTransaction(store, [&] {
            const DatabaseRow* found = store.catalogue.Find(database);
            if (!found || !ReadStored(store, RecordRow(database, record), old.count, form))
                return false;
            old.form = form;
            row = CountIn(*found, change);
            return WriteChange(store, row, change);
        }))
        return false;
    Follow(store, row, change);
    return true;
}

// Makes *block hold at least `bytes` bytes. False with the last error set.
bool MakeRoom(DWORD flags, BYTE** block, DWORD* size, std::size_t bytes) {
    if ((flags & CEDB_ALLOWREALLOC) == 0) {
        if (bytes <= *size && (*block || bytes == 0))
            return true;
        *size = static_cast<DWORD>(bytes);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return false;
    }
    if (bytes == 0 || (*block && LocalSize(*block) >= bytes))
        return true;
    void* grown = *block ? LocalReAlloc(*block, bytes, LMEM_MOVEABLE) : LocalAlloc(LMEM_FIXED, bytes);
    if (!grown)
        return false;
    *block = static_cast<BYTE*>(grown);
    return true;
}

CEOID ReadCurrent(OpenDatabase& open, DWORD flags, WORD* count, BYTE** block, DWORD* size) {
    StoredRecord stored;
    const CEOID record = open.Current(stored);
    if (record == 0 || !MakeRoom(flags, block, size, stored.form.size()))
        return 0;
    stored.form.copy(reinterpret_cast<char*>(*block), stored.form.size());
    if (stored.count != 0 && !RelocateRecord(stored.count, static_cast<DWORD>(stored.form.size()), *block)) {
        SetLastError(ERROR_FILE_CORRUPT);
        return 0;
    }
    *count = stored.count;
    *size = static_cast<DWORD>(stored.form.size());
    return record;
}

} // namespace
} // namespace storage

using namespace storage;

CEOID CeSeekDatabase(HANDLE database, DWORD seekType, DWORD value, DWORD* index) {
    return WithDatabase(
        database, CEOID{0}, [&](Store&, OpenDatabase& open) { return open.Seek(seekType, value, index); });
}

CEOID CeReadRecordProps(HANDLE database, DWORD flags, WORD* count, const CEPROPID* ids, BYTE** block,
                        DWORD* size) {
    return WithDatabase(
        database, CEOID{0},
        [&](Store&, OpenDatabase& open) {
            if (ids || !count || !block || !size) {
                SetLastError(ERROR_INVALID_PARAMETER);
                return CEOID{0};
            }
            return ReadCurrent(open, flags, count, block, size);
        });
}

CEOID CeWriteRecordProps(HANDLE database, CEOID record, WORD count, const CEPROPVAL* values) {
    return WithDatabase(
        database, CEOID{0},
        [&](Store& store, OpenDatabase& open) {
            if (count != 0 && !values) {
                SetLastError(ERROR_INVALID_PARAMETER);
                return CEOID{0};
            }
            return record == 0 ? MakeRecord(store, open.Database(), count, values)
                               : ChangeRecord(store, open.Database(), record, count, values);
        });
}

BOOL CeDeleteRecord(HANDLE database, CEOID record) {
    return WithDatabase(
        database, FALSE,
        [&](Store& store, OpenDatabase& open) {
            return DeleteRecord(store, open.Database(), record) ? TRUE : FALSE;
        });
}
