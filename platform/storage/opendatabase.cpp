#include "platform/storage/opendatabase.h"

#include <algorithm>

#include "platform/errors.h"
#include "platform/storage/sortkey.h"

namespace storage {

namespace {

// Reading ahead begins small, for a jump is often followed by another one, and grows as a walk goes on.
constexpr std::size_t kFirstBudget = 2048;
constexpr std::size_t kLargestBudget = 65536;
constexpr std::uint64_t kNeverLooked = ~std::uint64_t{0};
constexpr CEOID kNoRecord = 0xFFFFFFFF; // greater than every record's identifier

std::vector<OpenDatabase*>& Opened() {
    static auto* opened = new std::vector<OpenDatabase*>;
    return *opened;
}

} // namespace

const std::vector<OpenDatabase*>& OpenDatabases() {
    return Opened();
}

std::int64_t RecordRow(CEOID database, CEOID record) {
    return static_cast<std::int64_t>(std::uint64_t{database} << 32 | record);
}

OpenDatabase::OpenDatabase(Store& store, const DatabaseRow& row, int sort, HWND notify)
    : store(store), database(row.oid), sort(sort), budget(kFirstBudget), epoch(store.epoch),
      version(row.version), notify(notify) {
    if (sort >= 0)
        spec = row.info.rgSortSpecs[sort];
    watchedVersion = row.version;
    watchedDeletions = row.deletions;
    if (notify) {
        Statement newest(store.connection, "SELECT max(id) FROM records WHERE id >= ?1 AND id <= ?2");
        if (newest.Bind(RecordRow(database, 0)).Bind(RecordRow(database, kNoRecord)).Row())
            newestSeen = static_cast<CEOID>(newest.Number(0));
    }
    Opened().push_back(this);
}

OpenDatabase::~OpenDatabase() {
    std::erase(Opened(), this);
    if (StoreIfOpen() == &store)
        store.locks.Release(database);
}

// Batch and index hold as long as the database's version stays. The version is looked up only when any
// process changed anything.
void OpenDatabase::Revalidate() {
    if (epoch == store.epoch)
        return;
    const DatabaseRow* row = store.catalogue.Find(database);
    if (!row || row->version != version) {
        batch.Clear();
        indexKnown = false;
        version = row ? row->version : -1;
        // The current record may be gone, or stand elsewhere in the order.
        if (standing == Standing::OnRecord && !FetchRecord(position.record) &&
            GetLastError() == ERROR_NO_MORE_ITEMS)
            standing = Standing::InGap;
    }
    epoch = store.epoch;
}

CEOID OpenDatabase::Seek(DWORD seekType, DWORD value, DWORD* indexOut) {
    Revalidate();
    const Standing oldStanding = standing;
    const Position oldPosition = position;
    const bool oldIndexKnown = indexKnown;
    const DWORD oldIndex = index;
    bool found = false;
    switch (seekType) {
    case CEDB_SEEK_CEOID:
        found = SeekRecord(value);
        break;
    case CEDB_SEEK_BEGINNING:
        found = SeekFirst() && SeekSteps(value);
        break;
    case CEDB_SEEK_END:
        found = SeekLast() && SeekSteps(-static_cast<std::int64_t>(value));
        break;
    case CEDB_SEEK_CURRENT:
        found = (standing != Standing::AtStart || SeekFirst()) && SeekSteps(static_cast<LONG>(value));
        break;
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
    }
    if (found && (!indexOut || FindIndex())) {
        if (indexOut)
            *indexOut = index;
        return position.record;
    }
    if (standing != oldStanding || position.record != oldPosition.record) {
        standing = oldStanding;
        position = oldPosition;
        indexKnown = oldIndexKnown;
        index = oldIndex;
        batch.Clear();
    }
    return 0;
}

CEOID OpenDatabase::Current(StoredRecord& record) {
    Revalidate();
    if (standing == Standing::AtStart && !SeekFirst())
        return 0;
    if (standing == Standing::InGap) {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return 0;
    }
    if (batch.entries.empty() && !FetchRecord(position.record)) {
        if (GetLastError() == ERROR_NO_MORE_ITEMS)
            standing = Standing::InGap;
        return 0;
    }
    const Batch::Entry& entry = batch.entries[slot];
    record.count = entry.count;
    record.form = std::string_view(batch.bytes).substr(entry.at + entry.keyBytes, entry.formBytes);
    return entry.record;
}

bool OpenDatabase::SeekFirst() {
    budget = kFirstBudget;
    if (!Fetch({std::string(kKeyBeforeAll), 0}, true))
        return false;
    StandOn(0);
    index = 0;
    indexKnown = true;
    return true;
}

bool OpenDatabase::SeekLast() {
    budget = kFirstBudget;
    if (!Fetch({std::string(kKeyAfterAll), kNoRecord}, false))
        return false;
    StandOn(batch.entries.size() - 1);
    const DatabaseRow* row = store.catalogue.Find(database);
    indexKnown = row && row->info.wNumRecords > 0;
    index = indexKnown ? row->info.wNumRecords - 1U : 0;
    return true;
}

bool OpenDatabase::SeekRecord(CEOID record) {
    budget = kFirstBudget;
    const bool stays = standing == Standing::OnRecord && position.record == record;
    if (!FetchRecord(record))
        return false;
    indexKnown = indexKnown && stays;
    standing = Standing::OnRecord;
    return true;
}

bool OpenDatabase::SeekSteps(std::int64_t steps) {
    if (steps == 0 && standing == Standing::InGap) {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return false;
    }
    for (; steps != 0; steps += steps > 0 ? -1 : 1)
        if (!Step(steps > 0))
            return false;
    return true;
}

bool OpenDatabase::Step(bool forward) {
    const bool readAhead = !batch.entries.empty() && (forward ? slot + 1 < batch.entries.size() : slot > 0);
    const bool fromGap = standing == Standing::InGap;
    if (readAhead) {
        StandOn(forward ? slot + 1 : slot - 1);
    } else {
        if (!Fetch(position, forward))
            return false;
        budget = std::min(2 * budget, kLargestBudget);
        StandOn(forward ? 0 : batch.entries.size() - 1);
    }
    // The record behind a gap has the gap's own index.
    if (!forward)
        --index;
    else if (!fromGap)
        ++index;
    return true;
}

void OpenDatabase::StandOn(std::size_t entry) {
    slot = entry;
    standing = Standing::OnRecord;
    const Batch::Entry& found = batch.entries[entry];
    position.key.assign(batch.bytes, found.at, found.keyBytes);
    position.record = found.record;
}

bool OpenDatabase::Fetch(const Position& from, bool forward) {
    if (sort < 0) {
        Statement select(
            store.connection,
            forward ? "SELECT id, properties, data FROM records WHERE id > ?1 AND id <= ?2 ORDER BY id"
                    : "SELECT id, properties, data FROM records WHERE id < ?1 AND id >= ?2 "
                      "ORDER BY id DESC");
        select.Bind(RecordRow(database, from.record)).Bind(RecordRow(database, forward ? kNoRecord : 0));
        return FetchRows(select, forward);
    }
    Statement select(
        store.connection,
        forward ? "SELECT s.record, r.properties, r.data, s.key FROM sortkeys s CROSS JOIN records r "
                  "WHERE s.place = ?1 AND (s.key, s.record) > (?2, ?3) AND r.id = ?4 + s.record "
                  "ORDER BY s.key, s.record"
                : "SELECT s.record, r.properties, r.data, s.key FROM sortkeys s CROSS JOIN records r "
                  "WHERE s.place = ?1 AND (s.key, s.record) < (?2, ?3) AND r.id = ?4 + s.record "
                  "ORDER BY s.key DESC, s.record DESC");
    select.Bind(SortPlace()).BindBytes(from.key).Bind(from.record).Bind(RecordRow(database, 0));
    return FetchRows(select, forward);
}

bool OpenDatabase::FetchRows(Statement& select, bool forward) {
    Batch read;
    // A record without properties counts like one property, or a database of such records would be read
    // whole.
    const std::size_t mostEntries = budget / sizeof(CEPROPVAL);
    while (read.bytes.size() < budget && read.entries.size() < mostEntries && select.Row()) {
        const std::string_view form = select.Bytes(2);
        const std::string_view key = sort < 0 ? std::string_view() : select.Bytes(3);
        read.entries.push_back({static_cast<CEOID>(select.Number(0)), static_cast<WORD>(select.Number(1)),
                                key.size(), read.bytes.size(), form.size()});
        read.bytes.append(key).append(form);
    }
    if (read.entries.empty()) {
        if (!select.Failed())
            SetLastError(ERROR_NO_MORE_ITEMS);
        return false;
    }
    if (!forward)
        std::reverse(read.entries.begin(), read.entries.end());
    batch = std::move(read);
    return true;
}

bool OpenDatabase::FetchRecord(CEOID record) {
    Statement select(store.connection, "SELECT properties, data FROM records WHERE id = ?1");
    if (!select.Bind(RecordRow(database, record)).Row()) {
        if (!select.Failed())
            SetLastError(ERROR_NO_MORE_ITEMS);
        return false;
    }
    const StoredRecord stored{static_cast<WORD>(select.Number(0)), select.Bytes(1)};
    position = PlaceOf(record, stored);
    batch.bytes = position.key;
    batch.bytes.append(stored.form);
    batch.entries.assign(1, {record, stored.count, position.key.size(), 0, stored.form.size()});
    slot = 0;
    return true;
}

Position OpenDatabase::PlaceOf(CEOID record, const StoredRecord& stored) const {
    return {sort < 0 ? std::string() : SortKey(spec, stored.count, stored.form), record};
}

bool OpenDatabase::FindIndex() {
    if (indexKnown)
        return true;
    Statement count(store.connection,
                    sort < 0 ? "SELECT count(*) FROM records WHERE id >= ?1 AND id < ?2"
                             : "SELECT count(*) FROM sortkeys WHERE place = ?1 AND (key, record) < (?2, ?3)");
    if (sort < 0)
        count.Bind(RecordRow(database, 0)).Bind(RecordRow(database, position.record));
    else
        count.Bind(SortPlace()).BindBytes(position.key).Bind(position.record);
    if (!count.Row())
        return false;
    index = static_cast<DWORD>(count.Number(0));
    indexKnown = true;
    return true;
}

void OpenDatabase::FollowChange(const RecordChange& change, std::int64_t versionBefore,
                                std::int64_t versionAfter) {
    if (notify && !change.before)
        ownCreations.push_back(change.record);
    if (notify && !change.after)
        ++ownDeletions;
    if (epoch != store.epoch || version != versionBefore) {
        epoch = kNeverLooked; // another process wrote as well: everything is looked up again
        return;
    }
    version = versionAfter;
    batch.Clear();
    budget = kFirstBudget;
    if (standing == Standing::AtStart)
        return;
    if (change.record != position.record) {
        index -= change.before && PlaceOf(change.record, *change.before) < position;
        index += change.after && PlaceOf(change.record, *change.after) < position;
    } else if (!change.after) {
        standing = Standing::InGap;
    } else if (sort >= 0) {
        const Position moved = PlaceOf(change.record, *change.after);
        indexKnown = indexKnown && moved.key == position.key;
        position = moved;
    }
}

void OpenDatabase::ReportForeignChanges(void (*post)(HWND, UINT, WPARAM, LPARAM)) {
    const DatabaseRow* row = store.catalogue.Find(database);
    if (!row || row->version == watchedVersion)
        return;
    std::vector<CEOID> created;
    {
        Statement newer(store.connection, "SELECT id FROM records WHERE id > ?1 AND id <= ?2 ORDER BY id");
        newer.Bind(RecordRow(database, newestSeen)).Bind(RecordRow(database, kNoRecord));
        while (newer.Row()) {
            newestSeen = static_cast<CEOID>(newer.Number(0));
            if (!std::binary_search(ownCreations.begin(), ownCreations.end(), newestSeen))
                created.push_back(newestSeen);
        }
    }
    const bool deleted = row->deletions - watchedDeletions > ownDeletions;
    const CEOID lastDeleted = row->lastDeleted;
    watchedVersion = row->version;
    watchedDeletions = row->deletions;
    ownCreations.clear();
    ownDeletions = 0;
    for (const CEOID record : created)
        post(notify, DB_CEOID_CREATED, record, static_cast<LPARAM>(database));
    if (deleted)
        post(notify, DB_CEOID_RECORD_DELETED, lastDeleted, static_cast<LPARAM>(database));
}

} // namespace storage
