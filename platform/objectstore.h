// The object store: databases of records, records of properties. Names are UTF-16, times are UTC.
//
// What a call changed outlives the death of the process when the call returns, as a whole. It outlives a
// power cut, too, from when it returns for calls on a whole database, and for calls on records from when the
// last handle of this process on the database is closed, or within a second while a handle has a `notify`
// window.
//
// Calls that fail change nothing, unless all that failed was bringing it to the disk (ERROR_GEN_FAILURE, and
// nothing can be written from then on). They set the last error:
//   ERROR_FILE_NOT_FOUND       no database of that name or identifier
//   ERROR_NOT_ENOUGH_MEMORY    the local heap is full, or the host has no memory or no file handle left
//   ERROR_SHARING_VIOLATION    the database is open, in this process or another; or another process did not
//                              give up a lock on the device: in ten seconds, a live one that writes in a
//                              minute; or it writes to what this one can only read without locks
//   ERROR_DUP_NAME             another database has the name
//   ERROR_INVALID_PARAMETER    a bad handle, name, flag, record identifier or property value
//   ERROR_DISK_FULL            65,535 records are there already, no identifier is left, or the disk is full
//   ERROR_INSUFFICIENT_BUFFER  the caller's buffer is too small and must not grow
//   ERROR_NO_MORE_ITEMS        no such record in that direction, or no further database
//   ERROR_WRITE_PROTECT        the device cannot be written
//   ERROR_ACCESS_DENIED        it cannot be opened
//   ERROR_FILE_CORRUPT         it is damaged, or no device
//   ERROR_REVISION_MISMATCH    it was made by a newer version
//   ERROR_GEN_FAILURE          it failed in some other way: reading, writing, locking, bringing it to the
//   disk
// Only ERROR_NO_MORE_ITEMS is the end of a walk; after any other error there is more than was seen.
#pragma once

#include "platform/handles.h"
#include "platform/heap.h"
#include "platform/types.h"

// Databases and records draw their identifiers from one space; none is ever used twice, 0 is none.
using CEOID = DWORD;
// The property's number in the high 16 bits, its type (CEVT_*) in the low 16.
using CEPROPID = DWORD;

constexpr WORD CEVT_I2 = 2;
constexpr WORD CEVT_I4 = 3;
constexpr WORD CEVT_R8 = 5;
constexpr WORD CEVT_BOOL = 11;
constexpr WORD CEVT_UI2 = 18;
constexpr WORD CEVT_UI4 = 19;
constexpr WORD CEVT_LPWSTR = 31;
constexpr WORD CEVT_FILETIME = 64;
constexpr WORD CEVT_BLOB = 65;

constexpr WORD TypeFromPropID(CEPROPID id) {
    return LOWORD(id);
}

struct CEBLOB {
    DWORD dwCount;
    DevicePointer<BYTE> lpb;
};
static_assert(sizeof(CEBLOB) == 8);

union CEVALUNION {
    std::int16_t iVal;
    WORD uiVal;
    LONG lVal;
    DWORD ulVal;
    FILETIME filetime;
    DevicePointer<WCHAR> lpwstr;
    CEBLOB blob;
    BOOL boolVal;
    double dblVal;
};
static_assert(sizeof(CEVALUNION) == 8);

struct CEPROPVAL {
    CEPROPID propid;
    WORD wLenData; // unused, 0
    WORD wFlags;   // CEDB_PROPDELETE in a write, else 0
    CEVALUNION val;
};
static_assert(sizeof(CEPROPVAL) == 16 && offsetof(CEPROPVAL, val) == 8);

constexpr WORD CEDB_PROPDELETE = 0x0200;

constexpr WORD CEDB_MAXDBASENAMELEN = 32; // terminator included
constexpr WORD CEDB_MAXSORTORDER = 4;

// Numbers and times go by their value, texts by their code units, blobs by their length and then by their
// bytes. What lies beyond 256 characters or bytes makes no difference. Equals follow each other as they were
// made.
constexpr DWORD CEDB_SORT_DESCENDING = 0x0001;
constexpr DWORD CEDB_SORT_CASEINSENSITIVE = 0x0002;
// Records without the property come first; otherwise they come last. CEDB_SORT_DESCENDING does not turn this
// round.
constexpr DWORD CEDB_SORT_UNKNOWNFIRST = 0x0004;

struct SORTORDERSPEC {
    CEPROPID propid;
    DWORD dwFlags; // CEDB_SORT_*
};
static_assert(sizeof(SORTORDERSPEC) == 8);

// The members of a CEDBASEINFO that CeSetDatabaseInfo takes over.
constexpr DWORD CEDB_VALIDMODTIME = 0x0001;
constexpr DWORD CEDB_VALIDNAME = 0x0002;
constexpr DWORD CEDB_VALIDTYPE = 0x0004;
constexpr DWORD CEDB_VALIDSORTSPEC = 0x0008;

struct CEDBASEINFO {
    DWORD dwFlags; // CEDB_VALID*; all of them as read
    WCHAR szDbaseName[CEDB_MAXDBASENAMELEN];
    DWORD dwDbaseType;
    WORD wNumRecords;
    WORD wNumSortOrder;
    DWORD dwSize;            // bytes of all records in their storage form
    FILETIME ftLastModified; // of the latest change of a record or of this block
    SORTORDERSPEC rgSortSpecs[CEDB_MAXSORTORDER];
};
static_assert(sizeof(CEDBASEINFO) == 120 && offsetof(CEDBASEINFO, dwSize) == 76 &&
              offsetof(CEDBASEINFO, rgSortSpecs) == 88);

constexpr WORD OBJTYPE_DATABASE = 3;

struct CEOIDINFO {
    WORD wObjType;
    WORD wPad;
    CEDBASEINFO infDatabase; // when wObjType is OBJTYPE_DATABASE
};
static_assert(sizeof(CEOIDINFO) == 124);

struct STORE_INFORMATION {
    DWORD dwStoreSize; // bytes; the greatest number stands for anything larger
    DWORD dwFreeSize;
};

// ---- databases ----

// Walks all databases of a type, 0 for every type, oldest first, as they were at the time of this call. The
// handle is closed with CloseHandle. INVALID_HANDLE_VALUE on failure.
HANDLE CeFindFirstDatabase(DWORD type);
// The next database's identifier; 0 at the end, with ERROR_NO_MORE_ITEMS, and on failure.
CEOID CeFindNextDatabase(HANDLE enumeration);

// What a database is at this moment. FALSE with ERROR_FILE_NOT_FOUND when the identifier is no database's,
// `info` being left alone.
BOOL CeOidGetInfo(CEOID oid, CEOIDINFO* info);

// Makes an empty database. Names have 1 to 31 characters and are compared without regard to case; there are
// at most four sort orders. The new identifier, or 0.
//
// With CEDB_UNFINISHED the database is to be whole or not at all: unless CeFinishDatabase is called, it is
// deleted when the store is opened next and no process has it open, such as after the death of the one that
// made it.
constexpr DWORD CEDB_UNFINISHED = 0x0001;
CEOID CeCreateDatabase(const WCHAR* name, DWORD type, WORD sortOrders, const SORTORDERSPEC* specs,
                       DWORD flags = 0);
BOOL CeFinishDatabase(CEOID oid);

// Opens a database: by identifier when *oid is not 0, else by name, and then its identifier is put into *oid.
// `sort` is the property of one of its sort orders, else ERROR_INVALID_PARAMETER, or 0 for the order in which
// the records were made. `flags` is 0. The handle stands on the first record. While it is open no process can
// delete the database. A `notify` window is posted DB_CEOID_* messages when another process makes or deletes
// records. INVALID_HANDLE_VALUE on failure.
HANDLE CeOpenDatabase(CEOID* oid, const WCHAR* name, CEPROPID sort, DWORD flags, HWND notify);

// Takes over what info->dwFlags declares valid: name, type and sort orders. The time of modification is the
// store's own affair and becomes that of this call. Other sort orders than before need a database that nobody
// has open.
BOOL CeSetDatabaseInfo(CEOID oid, const CEDBASEINFO* info);

// Deletes a database with its records, also on a full disk; nobody may have it open.
BOOL CeDeleteDatabase(CEOID oid);

// ---- records ----

constexpr DWORD CEDB_SEEK_CEOID = 1;     // `value` is a record identifier
constexpr DWORD CEDB_SEEK_BEGINNING = 2; // `value` records after the first
constexpr DWORD CEDB_SEEK_END = 4;       // `value` records before the last
constexpr DWORD CEDB_SEEK_CURRENT = 8;   // `value`, signed, records after the current one

// Moves the handle to a record; its identifier, or 0 with ERROR_NO_MORE_ITEMS when there is none there, the
// handle then staying where it was. `index`, unless null, gets its index in the handle's order, counted from
// 0. The handle goes with its record when a change moves that in the order. When the current record has been
// deleted the handle stands in the gap that it left: there is nothing to read, and one step either way finds
// the neighbour.
CEOID CeSeekDatabase(HANDLE database, DWORD seekType, DWORD value, DWORD* index);

constexpr DWORD CEDB_ALLOWREALLOC = 1;

// Reads the current record whole: *count CEPROPVAL entries, then the strings and blobs that they point to, in
// one block of the local heap. With CEDB_ALLOWREALLOC *block, null or a block of the local heap, is made or
// grown when LocalSize says that it is too small; it is the caller's to LocalFree. Without it the *size bytes
// at *block, in the local heap too, must suffice, else *size tells how many would. *size becomes exactly what
// the record takes, 0 for a record without properties. `ids` is null: all properties. The record's
// identifier, or 0.
CEOID CeReadRecordProps(HANDLE database, DWORD flags, WORD* count, const CEPROPID* ids, BYTE** block,
                        DWORD* size);

// Makes a record (`record` 0) or changes one: a property with the same whole identifier is replaced, others
// are appended, an entry with CEDB_PROPDELETE takes its property away, even the last one. Strings and blobs
// must lie in live blocks of the local heap and outside `values`, else ERROR_INVALID_PARAMETER. A null string
// is kept as an empty one; only in records of earlier versions a string may be read as null. Values of
// unknown types are kept as they are, 8 bytes. A record has at most 65,535 properties and 16 MiB. The
// record's identifier, or 0.
CEOID CeWriteRecordProps(HANDLE database, CEOID record, WORD count, const CEPROPVAL* values);

BOOL CeDeleteRecord(HANDLE database, CEOID record);

// ---- the store ----

// Bytes that the store has and may still take, and of these what is free: at most what 32 bits can tell.
// FALSE when the device cannot be asked.
BOOL GetStoreInformation(STORE_INFORMATION* information);

// Posted to the window of a handle, for changes that other processes made: wParam is the record, lParam the
// database. Several deletions may be told by one message, with one of the records.
constexpr UINT DB_CEOID_CREATED = 0x0401;
constexpr UINT DB_CEOID_RECORD_DELETED = 0x0403;
