// The object store's calls on records.
#include <algorithm>

#include "platform/errors.h"
#include "platform/objectstore.h"
#include "platform/storage/opendatabase.h"
#include "platform/storage/recordform.h"
#include "platform/storage/sortkey.h"

namespace storage {
namespace {

constexpr WORD kMostRecords = 0xFFFF;

// Null with the last error set. The store is open and refreshed when there is one.
OpenDatabase* FindOpen(HANDLE handle, Store*& store) {
    store = TheStore();
    if (!store)
        return nullptr;
    OpenDatabase* open = FindKernelObject<OpenDatabase>(handle);
    if (!open)
        SetLastError(ERROR_INVALID_PARAMETER);
    return open;
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

bool WriteSortKey(Store& store, const char* sql, std::int64_t place, std::string_view key, CEOID record) {
    return Statement(store.connection, sql).Bind(place).BindBytes(key).Bind(record).Run();
}

bool WriteSortKeys(Store& store, const DatabaseRow& row, const RecordChange& change) {
    for (WORD order = 0; order < row.info.wNumSortOrder; ++order) {
        const SORTORDERSPEC& spec = row.info.rgSortSpecs[order];
        const std::int64_t place = std::int64_t{row.oid} * CEDB_MAXSORTORDER + order;
        const std::string before =
            change.before ? SortKey(spec, change.before->count, change.before->form) : std::string();
        const std::string after =
            change.after ? SortKey(spec, change.after->count, change.after->form) : std::string();
        if (before == after)
            continue;
        if (change.before &&
            !WriteSortKey(store, "DELETE FROM sortkeys WHERE place = ?1 AND key = ?2 AND record = ?3", place,
                          before, change.record))
            return false;
        if (change.after &&
            !WriteSortKey(store, "INSERT INTO sortkeys VALUES (?1, ?2, ?3)", place, after, change.record))
            return false;
    }
    return true;
}

// Brings a change of one record to its end: tables, commit, caches and open handles.
bool Apply(Store& store, WriteTransaction& transaction, DatabaseRow row, const RecordChange& change) {
    const std::int64_t versionBefore = row.version++;
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
    if (!WriteRow(store, RecordRow(row.oid, change.record), change) || !WriteSortKeys(store, row, change) ||
        !store.catalogue.StoreState(row) || !transaction.Commit())
        return false;
    store.catalogue.Keep(row);
    for (OpenDatabase* open : OpenDatabases())
        if (open->Database() == row.oid)
            open->FollowChange(change, versionBefore, row.version);
    return true;
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
    WriteTransaction transaction(store);
    const DatabaseRow* row = transaction.Begun() ? store.catalogue.Find(database) : nullptr;
    if (!row)
        return 0;
    if (row->info.wNumRecords == kMostRecords) {
        SetLastError(ERROR_DISK_FULL);
        return 0;
    }
    const CEOID record = store.NewIdentifier();
    return record != 0 && Apply(store, transaction, *row, {record, nullptr, &made}) ? record : 0;
}

CEOID ChangeRecord(Store& store, CEOID database, CEOID record, WORD count, const CEPROPVAL* values) {
    WriteTransaction transaction(store);
    const DatabaseRow* row = transaction.Begun() ? store.catalogue.Find(database) : nullptr;
    std::string oldForm;
    StoredRecord old;
    if (!row || !ReadStored(store, RecordRow(database, record), old.count, oldForm))
        return 0;
    old.form = oldForm;
    std::vector<Property> properties;
    if (!ParseRecord(old.count, old.form, properties)) {
        SetLastError(ERROR_FILE_CORRUPT);
        return 0;
    }
    std::string newForm;
    StoredRecord changed;
    if (!ApplyValues(count, values, properties) || !BuildRecord(properties, changed.count, newForm)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    changed.form = newForm;
    return Apply(store, transaction, *row, {record, &old, &changed}) ? record : 0;
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

} // namespace
} // namespace storage

using namespace storage;

CEOID CeSeekDatabase(HANDLE database, DWORD seekType, DWORD value, DWORD* index) {
    Store* store;
    OpenDatabase* open = FindOpen(database, store);
    return open ? open->Seek(seekType, value, index) : 0;
}

CEOID CeReadRecordProps(HANDLE database, DWORD flags, WORD* count, const CEPROPID* ids, BYTE** block,
                        DWORD* size) {
    Store* store;
    OpenDatabase* open = FindOpen(database, store);
    if (!open)
        return 0;
    if (ids || !count || !block || !size) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    StoredRecord stored;
    const CEOID record = open->Current(stored);
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

CEOID CeWriteRecordProps(HANDLE database, CEOID record, WORD count, const CEPROPVAL* values) {
    Store* store;
    OpenDatabase* open = FindOpen(database, store);
    if (!open)
        return 0;
    if (count != 0 && !values) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return record == 0 ? MakeRecord(*store, open->Database(), count, values)
                       : ChangeRecord(*store, open->Database(), record, count, values);
}

BOOL CeDeleteRecord(HANDLE database, CEOID record) {
    Store* store;
    OpenDatabase* open = FindOpen(database, store);
    if (!open)
        return FALSE;
    WriteTransaction transaction(*store);
    const DatabaseRow* row = transaction.Begun() ? store->catalogue.Find(open->Database()) : nullptr;
    std::string form;
    StoredRecord old;
    if (!row || !ReadStored(*store, RecordRow(row->oid, record), old.count, form))
        return FALSE;
    old.form = form;
    return Apply(*store, transaction, *row, {record, &old, nullptr}) ? TRUE : FALSE;
}
