// An open database: which record is its current one, what it has read ahead, and whom it tells of changes.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/base/handles.h"
#include "platform/objectstore.h"
#include "platform/storage/store.h"

namespace storage {

// Where a record stands in an order: its sort key, empty when the order is that in which records were made,
// then its identifier.
struct Position {
    std::string key;
    CEOID record = 0;

    bool operator<(const Position& other) const {
        const int order = key.compare(other.key);
        return order != 0 ? order < 0 : record < other.record;
    }
};

// A record as the store holds it.
struct StoredRecord {
    WORD count = 0;
    std::string_view form;
};

// A change of one record by this process.
struct RecordChange {
    CEOID record = 0;
    const StoredRecord* before = nullptr; // null for a record that was made
    const StoredRecord* after = nullptr;  // null for one that was deleted
};

// The hold on an open database, until it goes.
class Holding {
public:
    explicit Holding(Store& store) : store(store) {}
    Holding(Holding&& other) noexcept : store(other.store), database(std::exchange(other.database, 0)) {}
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;
    ~Holding();

    // False with the last error set.
    bool Take(CEOID wanted);

private:
    Store& store;
    CEOID database = 0;
};

class OpenDatabase final : public KernelObject {
public:
    // `sort` is the index of a sort order of the row, or -1. The new object takes over the hold on the
    // database.
    OpenDatabase(Store& store, Holding& held, const DatabaseRow& row, int sort, HWND notify);
    ~OpenDatabase() override;
    OpenDatabase(const OpenDatabase&) = delete;
    OpenDatabase& operator=(const OpenDatabase&) = delete;

    CEOID Database() const { return database; }

    // As CeSeekDatabase.
    CEOID Seek(DWORD seekType, DWORD value, DWORD* index);
    // The current record; valid until the next call. 0 with the last error set, ERROR_NO_MORE_ITEMS when
    // there is none.
    CEOID Current(StoredRecord& record);

    // After a commit of this process: `before` and `after` are the row's versions around it.
    void FollowChange(const RecordChange& change, std::int64_t versionBefore, std::int64_t versionAfter);

    // What is there when the watch begins is not reported. False with the last error set.
    bool StartWatching();
    bool IsWatching() const { return notify != nullptr; }
    // Posts what other processes did since the last time.
    void ReportForeignChanges(void (*post)(HWND, UINT, WPARAM, LPARAM));

private:
    enum class State {
        AtStart, // on the first record, which nobody has looked for yet
        OnRecord,
        InGap, // where the current record was before it was deleted
    };

    struct Cursor {
        State state = State::AtStart;
        Position position; // OnRecord, InGap
        bool indexKnown = false;
        DWORD index = 0; // how many records lie before the position
    };

    // Records that were read ahead, in their order.
    struct Batch {
        struct Entry {
            CEOID record;
            WORD count;
            std::size_t keyBytes;
            std::size_t at; // the key, then the form
            std::size_t formBytes;
        };
        std::vector<Entry> entries;
        std::string bytes;

        void Clear() {
            entries.clear();
            bytes.clear();
        }
    };

    class Restorer;

    // Catches up with what other processes did. False with the last error set.
    bool Revalidate();
    bool SeekFrom(DWORD seekType, DWORD value);
    bool SeekFirst();
    bool SeekLast();
    bool SeekRecord(CEOID record);
    bool SeekSteps(std::int64_t steps);
    bool Step(bool forward);
    // Reads the records after or before a position. False when there are none (ERROR_NO_MORE_ITEMS) or on
    // failure; the batch then stays.
    bool Fetch(const Position& from, bool forward);
    bool FetchRows(Statement& select, bool forward);
    // Reads one record and moves the cursor's position to it. False, with everything as it was, when there is
    // none (ERROR_NO_MORE_ITEMS) or on failure.
    bool FetchRecord(CEOID record);
    void MoveTo(std::size_t entry);
    bool FindIndex();
    Position PositionOf(CEOID record, const StoredRecord& stored) const;

    Store& store;
    Holding held;
    CEOID database;
    int sort;
    SORTORDERSPEC spec = {};

    Cursor cursor;
    Batch batch;
    Batch spare;          // what is read next comes into its memory
    std::size_t slot = 0; // of the current record, when the batch has any
    std::size_t budget;   // bytes to read ahead next
    std::uint64_t epoch;  // of the store, when the version was last looked at
    std::int64_t version; // of the database, that batch and index belong to

    HWND notify;
    CEOID newestSeen = 0; // all older records were told of, or were there before
    std::int64_t watchedVersion = 0;
    std::int64_t watchedDeletions = 0;
    std::vector<CEOID> ownCreations; // since the last report
    std::int64_t ownDeletions = 0;
};

// All open databases of this process.
const std::vector<OpenDatabase*>& OpenDatabases();

constexpr CEOID kNoRecord = 0xFFFFFFFF; // greater than every record's identifier

// A record's row in the table of records.
std::int64_t RecordRow(CEOID database, CEOID record);
// What tells a database's sort orders, counted from 0, in the table of sort keys: its column `place`.
std::int64_t SortOrderNumber(CEOID database, int order);

} // namespace storage
