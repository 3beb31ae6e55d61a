#include "platform/storage/catalogue.h"

#include <algorithm>
#include <cstring>

#include "platform/errors.h"
#include "platform/storage/fold.h"

namespace storage {

namespace {

constexpr std::int64_t kMostCounted = std::int64_t{1} << 62; // so that adding to a count cannot overflow

std::string_view SpecBytes(const CEDBASEINFO& info) {
    return {reinterpret_cast<const char*>(info.rgSortSpecs), info.wNumSortOrder * sizeof(SORTORDERSPEC)};
}

std::int64_t Modified(const CEDBASEINFO& info) {
    const std::uint64_t high = info.ftLastModified.dwHighDateTime;
    return static_cast<std::int64_t>(high << 32 | info.ftLastModified.dwLowDateTime);
}

// Columns as every SELECT of this file names them. Counts that a damaged file may hold are brought into
// range.
DatabaseRow ReadRow(const Statement& select) {
    DatabaseRow row;
    row.oid = static_cast<CEOID>(select.Number(0));
    row.info.dwFlags = kAllInfoValid;
    const std::u16string_view name = select.Text(1);
    name.copy(row.info.szDbaseName, CEDB_MAXDBASENAMELEN - 1);
    row.info.dwDbaseType = static_cast<DWORD>(select.Number(2));
    row.info.wNumRecords = static_cast<WORD>(std::clamp<std::int64_t>(select.Number(3), 0, 0xFFFF));
    row.SetBytes(static_cast<std::uint64_t>(std::clamp<std::int64_t>(select.Number(4), 0, kMostCounted)));
    const std::uint64_t modified = static_cast<std::uint64_t>(select.Number(5));
    row.info.ftLastModified = {static_cast<DWORD>(modified), static_cast<DWORD>(modified >> 32)};
    const std::string_view specs = select.Bytes(6);
    row.info.wNumSortOrder =
        static_cast<WORD>(std::min<std::size_t>(specs.size() / sizeof(SORTORDERSPEC), CEDB_MAXSORTORDER));
    specs.copy(reinterpret_cast<char*>(row.info.rgSortSpecs), row.info.wNumSortOrder * sizeof(SORTORDERSPEC));
    row.version = std::clamp<std::int64_t>(select.Number(7), 0, kMostCounted);
    row.deletions = std::clamp<std::int64_t>(select.Number(8), 0, kMostCounted);
    row.lastDeleted = static_cast<CEOID>(select.Number(9));
    return row;
}

} // namespace

const DatabaseRow* Catalogue::Load(Statement& select) {
    if (!select.Row()) {
        if (!select.Failed())
            SetLastError(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    const DatabaseRow row = ReadRow(select);
    Keep(row);
    return &rows[row.oid];
}

const DatabaseRow* Catalogue::Find(CEOID oid) {
    const auto known = rows.find(oid);
    if (known != rows.end())
        return &known->second;
    Statement select(connection,
                     "SELECT oid, name, type, records, bytes, modified, sortorders, version, deletions, "
                     "lastdeleted FROM databases WHERE oid = ?1");
    select.Bind(oid);
    return Load(select);
}

const DatabaseRow* Catalogue::FindByName(std::u16string_view name) {
    const std::u16string folded = Fold(name);
    const auto known = names.find(folded);
    if (known != names.end())
        return &rows.at(known->second);
    Statement select(connection,
                     "SELECT oid, name, type, records, bytes, modified, sortorders, version, deletions, "
                     "lastdeleted FROM databases WHERE folded = ?1");
    select.BindText(folded);
    return Load(select);
}

bool Catalogue::Insert(const DatabaseRow& row) {
    const std::u16string folded = Fold(row.Name());
    Statement insert(connection, "INSERT INTO databases (oid, name, folded, type, records, bytes, modified, "
                                 "sortorders, version, deletions, lastdeleted) "
                                 "VALUES (?1, ?2, ?3, ?4, 0, 0, ?5, ?6, 0, 0, 0)");
    insert.Bind(row.oid).BindText(row.Name()).BindText(folded).Bind(row.info.dwDbaseType);
    return insert.Bind(Modified(row.info)).BindBytes(SpecBytes(row.info)).Run();
}

bool Catalogue::StoreState(const DatabaseRow& row) {
    Statement update(connection,
                     "UPDATE databases SET records = ?1, bytes = ?2, modified = ?3, version = ?4, "
                     "deletions = ?5, lastdeleted = ?6 WHERE oid = ?7");
    update.Bind(row.info.wNumRecords).Bind(static_cast<std::int64_t>(row.bytes)).Bind(Modified(row.info));
    return update.Bind(row.version).Bind(row.deletions).Bind(row.lastDeleted).Bind(row.oid).Run();
}

bool Catalogue::StoreAll(const DatabaseRow& row) {
    const std::u16string folded = Fold(row.Name());
    Statement update(
        connection, "UPDATE databases SET name = ?1, folded = ?2, type = ?3, sortorders = ?4 WHERE oid = ?5");
    update.BindText(row.Name()).BindText(folded).Bind(row.info.dwDbaseType).BindBytes(SpecBytes(row.info));
    return update.Bind(row.oid).Run() && StoreState(row);
}

bool Catalogue::Remove(CEOID oid) {
    Statement remove(connection, "DELETE FROM databases WHERE oid = ?1");
    return remove.Bind(oid).Run();
}

void Catalogue::Clear() {
    rows.clear();
    names.clear();
}

void Catalogue::Keep(const DatabaseRow& row) {
    const auto known = rows.find(row.oid);
    if (known != rows.end() && known->second.Name() == row.Name()) {
        known->second = row;
        return;
    }
    Forget(row.oid);
    rows[row.oid] = row;
    names[Fold(row.Name())] = row.oid;
}

void Catalogue::Forget(CEOID oid) {
    const auto known = rows.find(oid);
    if (known != rows.end()) {
        names.erase(Fold(known->second.Name()));
        rows.erase(known);
    }
}

} // namespace storage
