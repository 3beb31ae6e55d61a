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

std::int64_t SortOrderNumber(CEOID database, int order) {
    return std::int64_t{database} * CEDB_MAXSORTORDER + order;
}

bool Holding::Take(CEOID wanted) {
    if (!store.locks.Hold(wanted))
        return false;
    database = wanted;
    return true;
}

Holding::~Holding() {
    if (database != 0 && StoreIfOpen() == &store) {
        store.locks.Release(database);
        // The last handle: what was done through it outlives a power cut now.
        if (!store.locks.Holds(database))
            store.Sync();
    }
}

// Puts the handle back to where it was, unless the seek came to its end.
class OpenDatabase::Restorer {
public:
    explicit Restorer(OpenDatabase& open) : open(open), before(open.cursor) {}
    Restorer(const Restorer&) = delete;
    Restorer& operator=(const Restorer&) = delete;
    ~Restorer() {
        if (!arrived) {
            open.cursor = std::move(before);
            open.batch.Clear();
        }
    }
    void Arrive() { arrived = true; }

private:
    OpenDatabase& open;
    Cursor before;
    bool arrived = false;
};

OpenDatabase::OpenDatabase(Store& store, Holding& held, const DatabaseRow& row, int sort, HWND notify)
    : store(store), held(std::move(held)), database(row.oid), sort(sort), budget(kFirstBudget),
      epoch(store.epoch), version(row.version), notify(notify) {
    if (sort >= 0)
        spec = row.info.rgSortSpecs[sort];
    watchedVersion = row.version;
    watchedDeletions = row.deletions;
    Opened().push_back(this);
}

OpenDatabase::~OpenDatabase() {
    std::erase(Opened(), this);
}

// Batch and index hold as long as the database's version stays. The version is looked up only when any
// process changed anything.
bool OpenDatabase::Revalidate() {
    if (epoch == store.epoch)
        return true;
    const DatabaseRow* row = store.catalogue.Find(database);
    if (!row)
        return false;
    if (row->version != version) {
        const std::int64_t newVersion = row->version;
        batch.Clear();
        cursor.indexKnown = false;
        // The current record may be gone, or stand elsewhere in the order.
        if (cursor.state == State::OnRecord && !FetchRecord(cursor.position.record)) {
            if (GetLastError() != ERROR_NO_MORE_ITEMS)
                return false;
            cursor.state = State::InGap;
        }
        version = newVersion;
    }
    epoch = store.epoch;
    return true;
}

CEOID OpenDatabase::Seek(DWORD seekType, DWORD value, DWORD* indexOut) {
    if (!Revalidate())
        return 0;
    Restorer restorer(*this);
    if (!SeekFrom(seekType, value) || (indexOut && !FindIndex()))
        return 0;
    restorer.Arrive();
    if (indexOut)
        *indexOut = cursor.index;
    return cursor.position.record;
}

bool OpenDatabase::SeekFrom(DWORD seekType, DWORD value) {
    switch (seekType) {
    case CEDB_SEEK_CEOID:
        return SeekRecord(value);
    case CEDB_SEEK_BEGINNING:
        return SeekFirst() && SeekSteps(value);
    case CEDB_SEEK_END:
        return SeekLast() && SeekSteps(-static_cast<std::int64_t>(value));
    case CEDB_SEEK_CURRENT:
        return (cursor.state != State::AtStart || SeekFirst()) && SeekSteps(static_cast<LONG>(value));
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
}

CEOID OpenDatabase::Current(StoredRecord& record) {
    if (!Revalidate() || (cursor.state == State::AtStart && !SeekFirst()))
        return 0;
    if (cursor.state == State::InGap) {
        SetLastError(ERROR_NO_MORE_ITEMS);
        return 0;
    }
    if (batch.entries.empty() && !FetchRecord(cursor.position.record)) {
        if (GetLastError() == ERROR_NO_MORE_ITEMS)
            cursor.state = State::InGap;
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
    MoveTo(0);
    cursor.index = 0;
    cursor.indexKnown = true;
    return true;
}

bool OpenDatabase::SeekLast() {
    budget = kFirstBudget;
    if (!Fetch({std::string(kKeyAfterAll), kNoRecord}, false))
        return false;
    MoveTo(batch.entries.size() - 1);
    const DatabaseRow* row = store.catalogue.Find(database);
    cursor.indexKnown = row && row->info.wNumRecords > 0;
    cursor.index = cursor.indexKnown ? row->info.wNumRecords - 1U : 0;
    return true;
}

bool OpenDatabase::SeekRecord(CEOID record) {
    budget = kFirstBudget;
    const bool stays = cursor.state == State::OnRecord && cursor.position.record == record;
    if (!FetchRecord(record))
        return false;
    cursor.indexKnown = cursor.indexKnown && stays;
    cursor.state = State::OnRecord;
    return true;
}

bool OpenDatabase::SeekSteps(std::int64_t steps) {
    if (steps == 0 && cursor.state == State::InGap) {
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
    const bool fromGap = cursor.state == State::InGap;
    if (readAhead) {
        MoveTo(forward ? slot + 1 : slot - 1);
    } else {
        if (!Fetch(cursor.position, forward))
            return false;
        budget = std::min(2 * budget, kLargestBudget);
        MoveTo(forward ? 0 : batch.entries.size() - 1);
    }
    // The record behind a gap has the gap's own index.
    if (!forward)
        --cursor.index;
    else if (!fromGap)
        ++cursor.index;
    return true;
}

void OpenDatabase::MoveTo(std::size_t entry) {
    slot = entry;
    cursor.state = State::OnRecord;
    const Batch::Entry& found = batch.entries[entry];
    cursor.position.key.assign(batch.bytes, found.at, found.keyBytes);
    cursor.position.record = found.record;
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
    select.Bind(SortOrderNumber(database, sort))
        .BindBytes(from.key)
        .Bind(from.record)
        .Bind(RecordRow(database, 0));
    return FetchRows(select, forward);
}

bool OpenDatabase::FetchRows(Statement& select, bool forward) {
    Batch& read = spare;
    read.Clear();
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
    std::swap(batch, spare);
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
    cursor.position = PositionOf(record, stored);
    batch.bytes = cursor.position.key;
    batch.bytes.append(stored.form);
    batch.entries.assign(1, {record, stored.count, cursor.position.key.size(), 0, stored.form.size()});
    slot = 0;
    return true;
}

Position OpenDatabase::PositionOf(CEOID record, const StoredRecord& stored) const {
    return {sort < 0 ? std::string() : SortKey(spec, stored.count, stored.form), record};
}

bool OpenDatabase::FindIndex() {
    if (cursor.indexKnown)
        return true;
    Statement count(store.connection,
                    sort < 0 ? "SELECT count(*) FROM records WHERE id >= ?1 AND id < ?2"
                             : "SELECT count(*) FROM sortkeys WHERE place = ?1 AND (key, record) < (?2, ?3)");
    if (sort < 0)
        count.Bind(RecordRow(database, 0)).Bind(RecordRow(database, cursor.position.record));
    else
        count.Bind(SortOrderNumber(database, sort))
            .BindBytes(cursor.position.key)
            .Bind(cursor.position.record);
    if (!count.Row())
        return false;
    cursor.index = static_cast<DWORD>(count.Number(0));
    cursor.indexKnown = true;
    return true;
}

// Whatever may find no memory comes first: the handle must not be left halfway.
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
    const bool placed = cursor.state != State::AtStart;
    Position before = placed && change.before ? PositionOf(change.record, *change.before) : Position();
    Position after = placed && change.after ? PositionOf(change.record, *change.after) : Position();
    version = versionAfter;
    batch.Clear();
    budget = kFirstBudget;
    if (!placed)
        return;
    if (change.record != cursor.position.record) {
        cursor.index -= change.before && before < cursor.position;
        cursor.index += change.after && after < cursor.position;
    } else if (!change.after) {
        cursor.state = State::InGap;
    } else if (sort >= 0) {
        cursor.indexKnown = cursor.indexKnown && after.key == cursor.position.key;
        cursor.position = std::move(after);
    }
}

} // namespace storage
