// One open object-store database, with every failure reported in one way.
#pragma once

#include "platform/objectstore.h"
#include "platform/window.h"

constexpr int kNameCapacity = 32; // characters of a database name, terminator included

// One record in memory: `propCount` CEPROPVAL entries followed by the strings and blobs that they point into.
// `data` is a block of the local heap that grows as records are read into it.
struct RecordBuffer {
    RecordBuffer() = default;
    ~RecordBuffer() { LocalFree(data); }
    RecordBuffer(const RecordBuffer&) = delete;
    RecordBuffer& operator=(const RecordBuffer&) = delete;

    WORD propCount = 0;
    DWORD reserved = 0;   // 0 after every read
    DWORD size = 0;       // bytes of the record in `data`
    BYTE* data = nullptr; // owned

    CEPROPVAL* Properties() const { return reinterpret_cast<CEPROPVAL*>(data); }
    // The property with that identifier; null when the record has none.
    CEPROPVAL* Find(CEPROPID identifier) const;
};

// A database of the system's own: its name begins with a backslash.
inline bool IsSystemDatabase(const WCHAR* name) {
    return name[0] == u'\\';
}

class DbHandle {
public:
    explicit DbHandle(HWND owner);
    virtual ~DbHandle(); // closes silently
    DbHandle(const DbHandle&) = delete;
    DbHandle& operator=(const DbHandle&) = delete;

    // Opening closes what was open. The invalid handle on failure.
    HANDLE Open(const WCHAR* databaseName, CEPROPID sortProperty, DWORD flags);
    HANDLE OpenWithNotify(HWND notify, const WCHAR* databaseName, CEPROPID sortProperty, DWORD flags);
    // `flags` are those of CeCreateDatabase.
    HANDLE Create(const WCHAR* databaseName, const CEDBASEINFO& info, DWORD flags = 0);
    bool Close(); // true also when nothing was open

    // Every operation leaves the last error of its failure to its caller, also after it has been reported.
    // All below but SetInfo and DeleteDatabase fail at once, without a message and with
    // ERROR_INVALID_PARAMETER, when no database is open.
    bool GetInfo(CEDBASEINFO* info); // zeroed on failure
    bool Finish();                   // one made with CEDB_UNFINISHED
    bool SetInfo(CEOID database, const CEDBASEINFO& info);

    // The index is the record's 0-based position in the order that the database was opened with.
    bool SeekFirst(DWORD* index, CEOID* record = nullptr);
    bool SeekLast(DWORD* index, CEOID* record = nullptr);
    bool SeekPrevious(DWORD* index, CEOID* record = nullptr);
    bool SeekNext(DWORD* index, CEOID* record = nullptr);
    bool SeekToRecord(CEOID record, DWORD* index);

    using SeekOperation = bool (DbHandle::*)(DWORD* index, CEOID* record);
    // One step of a walk over the records: running off its end is not reported, any other failure is.
    bool Walk(SeekOperation seek, DWORD* index);
    // The last step ran off the end. After any other step that returned false there may be records that
    // could not be reached, and the walk is not complete.
    bool WalkEnded() const { return walkEnded; }

    // The current record, with pointers; returns its id, 0 on failure.
    CEOID ReadRecord(RecordBuffer* buffer);
    // The same with offsets from the start of the block in place of pointers, 0 for an empty blob: the form
    // that files and wires carry. It knows no absent string: one becomes an empty string.
    CEOID ReadRecordForStorage(RecordBuffer* buffer);
    // Record 0 makes a new one. Returns the record's id, 0 on failure.
    CEOID WriteRecord(CEOID record, const RecordBuffer& buffer);
    // Turns the offsets of `buffer` into pointers, then writes. Nothing in the buffer is trusted: entries,
    // offsets, lengths or terminators that do not fit the block fail as ERROR_INVALID_PARAMETER. `data` must
    // be a local-heap block.
    CEOID WriteRecordFromStorage(CEOID record, RecordBuffer* buffer);
    CEOID WriteProperty(CEOID record, CEPROPVAL* property);
    CEOID DeleteProperty(CEOID record, CEPROPVAL* property);
    bool DeleteRecord(CEOID record);
    // From the last record back, silently; stops at the first that cannot be deleted.
    bool DeleteAllRecords();
    // By name; does not touch the database that is open here.
    bool DeleteDatabase(const WCHAR* databaseName);

    // Fills errorText with the last error in words and shows the message, unless switched off; the message's
    // arguments are the name (null: this database's) and the error text, in this order whatever the format.
    // Returns errorText.
    const WCHAR* ReportError(const WCHAR* format, const WCHAR* nameForMessage);

    // Says that the store does not tell which databases there are, or what they are, with the last error's
    // reason. It stays the last error.
    static void ReportStoreFailure(HWND owner);

    static constexpr int kNameRoom = 36;
    static constexpr int kTextRoom = 256;

    HANDLE handle = INVALID_HANDLE_VALUE;
    WCHAR name[kNameRoom] = {};
    WCHAR messageText[kTextRoom] = {};
    WCHAR errorText[kTextRoom] = {};
    HWND ownerWindow;
    BYTE reportErrors = 1;
    CEOID oid = 0;

private:
    bool IsOpen() const;
    bool Seek(DWORD type, DWORD value, DWORD* index, CEOID* record);
    void Report(UINT formatId, const WCHAR* nameForMessage = nullptr);
    void ShowError(const WCHAR* format, const WCHAR* nameForMessage);
    HANDLE Opened(HANDLE opened, const WCHAR* databaseName);

    bool walkEnded = false;
};

// Switches a handle's reports on or off while it lives.
class ReportScope {
public:
    ReportScope(const ReportScope&) = delete;
    ReportScope& operator=(const ReportScope&) = delete;

protected:
    ReportScope(DbHandle& db, BYTE reportErrors) : db(db), before(db.reportErrors) {
        db.reportErrors = reportErrors;
    }
    ~ReportScope() { db.reportErrors = before; }

private:
    DbHandle& db;
    const BYTE before;
};

// For steps whose failure is no news, such as running off the last record.
class QuietReports : public ReportScope {
public:
    explicit QuietReports(DbHandle& db) : ReportScope(db, 0) {}
};

// For the steps of a handle that is kept quiet otherwise.
class LoudReports : public ReportScope {
public:
    explicit LoudReports(DbHandle& db) : ReportScope(db, 1) {}
};

// A walk over all records, by DbHandle::Walk.
bool WalkToFirst(DbHandle& db, DWORD* index);
bool WalkToNext(DbHandle& db, DWORD* index);
