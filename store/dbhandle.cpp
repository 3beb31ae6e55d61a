#include "store/dbhandle.h"

#include "app/application.h"
#include "app/uiservices.h"
#include "platform/errors.h"
#include "platform/text.h"
#include "resources/resource.h"

CEPROPVAL* RecordBuffer::Find(CEPROPID identifier) const {
    for (WORD index = 0; index < propCount; ++index)
        if (Properties()[index].propid == identifier)
            return Properties() + index;
    return nullptr;
}

DbHandle::DbHandle(HWND owner) : ownerWindow(owner) {}

DbHandle::~DbHandle() {
    reportErrors = 0;
    Close();
}

HANDLE DbHandle::Opened(HANDLE opened, const WCHAR* databaseName) {
    if (opened == INVALID_HANDLE_VALUE) {
        oid = 0;
        Report(IDS_COULD_NOT_OPEN, databaseName);
        return INVALID_HANDLE_VALUE;
    }
    handle = opened;
    CopyText(name, databaseName);
    return handle;
}

HANDLE DbHandle::Open(const WCHAR* databaseName, CEPROPID sortProperty, DWORD flags) {
    return OpenWithNotify(nullptr, databaseName, sortProperty, flags);
}

HANDLE DbHandle::OpenWithNotify(HWND notify, const WCHAR* databaseName, CEPROPID sortProperty, DWORD flags) {
    if (handle != INVALID_HANDLE_VALUE)
        Close();
    oid = 0;
    return Opened(CeOpenDatabase(&oid, databaseName, sortProperty, flags, notify), databaseName);
}

HANDLE DbHandle::Create(const WCHAR* databaseName, const CEDBASEINFO& info, DWORD flags) {
    if (handle != INVALID_HANDLE_VALUE)
        Close();
    oid = CeCreateDatabase(databaseName, info.dwDbaseType, info.wNumSortOrder, info.rgSortSpecs, flags);
    if (!oid) {
        Report(IDS_COULD_NOT_CREATE, databaseName);
        return INVALID_HANDLE_VALUE;
    }
    const CEOID made = oid;
    const HANDLE opened = CeOpenDatabase(&oid, nullptr, 0, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        CeDeleteDatabase(made); // rather than to leave it empty
        SetLastError(error);
    }
    return Opened(opened, databaseName);
}

bool DbHandle::Close() {
    bool closed = true;
    if (handle != INVALID_HANDLE_VALUE && !CloseHandle(handle)) {
        Report(IDS_COULD_NOT_CLOSE);
        closed = false;
    }
    handle = INVALID_HANDLE_VALUE;
    name[0] = 0;
    oid = 0;
    return closed;
}

// The first thing that every operation on an open database asks.
bool DbHandle::IsOpen() const {
    if (handle != INVALID_HANDLE_VALUE)
        return true;
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

bool DbHandle::GetInfo(CEDBASEINFO* info) {
    *info = {};
    if (!IsOpen())
        return false;
    CEOIDINFO object = {};
    if (!CeOidGetInfo(oid, &object) || object.wObjType != OBJTYPE_DATABASE) {
        // Quirk: the message speaks of updating although this is a read; the program has no other.
        Report(IDS_COULD_NOT_UPDATE);
        return false;
    }
    *info = object.infDatabase;
    return true;
}

bool DbHandle::Finish() {
    if (!IsOpen())
        return false;
    if (CeFinishDatabase(oid))
        return true;
    Report(IDS_COULD_NOT_UPDATE);
    return false;
}

bool DbHandle::SetInfo(CEOID database, const CEDBASEINFO& info) {
    if (CeSetDatabaseInfo(database, &info))
        return true;
    // A failed rename is reported under the name that the database has kept.
    const DWORD error = GetLastError();
    CEOIDINFO object = {};
    const bool known = CeOidGetInfo(database, &object) && object.wObjType == OBJTYPE_DATABASE;
    SetLastError(error);
    Report(IDS_COULD_NOT_UPDATE, known ? object.infDatabase.szDbaseName : info.szDbaseName);
    return false;
}

bool DbHandle::Seek(DWORD type, DWORD value, DWORD* index, CEOID* record) {
    if (!IsOpen())
        return false;
    const CEOID found = CeSeekDatabase(handle, type, value, index);
    if (!found) {
        Report(IDS_COULD_NOT_FIND_RECORD);
        return false;
    }
    if (record)
        *record = found;
    return true;
}

bool DbHandle::SeekFirst(DWORD* index, CEOID* record) {
    return Seek(CEDB_SEEK_BEGINNING, 0, index, record);
}

bool DbHandle::SeekLast(DWORD* index, CEOID* record) {
    return Seek(CEDB_SEEK_END, 0, index, record);
}

bool DbHandle::SeekPrevious(DWORD* index, CEOID* record) {
    return Seek(CEDB_SEEK_CURRENT, static_cast<DWORD>(-1), index, record);
}

bool DbHandle::SeekNext(DWORD* index, CEOID* record) {
    return Seek(CEDB_SEEK_CURRENT, 1, index, record);
}

bool DbHandle::SeekToRecord(CEOID record, DWORD* index) {
    return Seek(CEDB_SEEK_CEOID, record, index, nullptr);
}

CEOID DbHandle::ReadRecord(RecordBuffer* buffer) {
    if (!IsOpen())
        return 0;
    buffer->propCount = 0;
    buffer->reserved = 0;
    const CEOID record = CeReadRecordProps(handle, CEDB_ALLOWREALLOC, &buffer->propCount, nullptr,
                                           &buffer->data, &buffer->size);
    if (!record)
        Report(IDS_COULD_NOT_READ_RECORD);
    return record;
}

CEOID DbHandle::WriteRecord(CEOID record, const RecordBuffer& buffer) {
    if (!IsOpen())
        return 0;
    const CEOID written = CeWriteRecordProps(handle, record, buffer.propCount, buffer.Properties());
    if (!written)
        Report(IDS_COULD_NOT_WRITE_RECORD);
    return written;
}

CEOID DbHandle::WriteProperty(CEOID record, CEPROPVAL* property) {
    if (!IsOpen())
        return 0;
    property->wLenData = 0;
    property->wFlags = 0;
    const CEOID written = CeWriteRecordProps(handle, record, 1, property);
    if (!written)
        Report(IDS_COULD_NOT_WRITE_RECORD);
    return written;
}

CEOID DbHandle::DeleteProperty(CEOID record, CEPROPVAL* property) {
    if (!IsOpen())
        return 0;
    property->wLenData = 0;
    property->wFlags = CEDB_PROPDELETE;
    const CEOID written = CeWriteRecordProps(handle, record, 1, property);
    if (!written)
        Report(IDS_COULD_NOT_DELETE_PROPERTY);
    return written;
}

bool DbHandle::DeleteRecord(CEOID record) {
    if (!IsOpen())
        return false;
    if (CeDeleteRecord(handle, record))
        return true;
    Report(IDS_COULD_NOT_DELETE_RECORD);
    return false;
}

bool DbHandle::DeleteAllRecords() {
    if (!IsOpen())
        return false;
    const QuietReports quiet(*this);
    DWORD index = 0;
    CEOID record = 0;
    while (SeekLast(&index, &record) && CeDeleteRecord(handle, record)) {
    }
    return true; // Quirk: also when a record cannot be deleted, as emptying has never reported one
}

bool DbHandle::DeleteDatabase(const WCHAR* databaseName) {
    CEOID database = 0;
    const HANDLE opened = CeOpenDatabase(&database, databaseName, 0, 0, nullptr);
    if (opened != INVALID_HANDLE_VALUE && CloseHandle(opened) && CeDeleteDatabase(database))
        return true;
    Report(IDS_COULD_NOT_DELETE, databaseName);
    return false;
}

void DbHandle::Report(UINT formatId, const WCHAR* nameForMessage) {
    const DWORD error = GetLastError();
    LoadText(formatId, messageText);
    SetLastError(error);
    ReportError(messageText, nameForMessage);
}

namespace {

struct ErrorText {
    DWORD error;
    UINT stringId;
};

constexpr ErrorText kErrorTexts[] = {
    {ERROR_FILE_NOT_FOUND, IDS_ERROR_FILE_NOT_FOUND},
    {ERROR_NOT_ENOUGH_MEMORY, IDS_ERROR_NOT_ENOUGH_STORAGE},
    {ERROR_SHARING_VIOLATION, IDS_ERROR_SHARING},
    {ERROR_DUP_NAME, IDS_ERROR_DUPLICATE_NAME},
    {ERROR_INVALID_PARAMETER, IDS_ERROR_INVALID_PARAMETER},
    {ERROR_DISK_FULL, IDS_ERROR_DISK_FULL},
    {ERROR_INSUFFICIENT_BUFFER, IDS_ERROR_BUFFER_TOO_SMALL},
    {ERROR_NO_DATA, IDS_ERROR_PIPE_CLOSED},
    {ERROR_NO_MORE_ITEMS, IDS_ERROR_NO_MORE_ITEMS},
    {ERROR_KEY_DELETED, IDS_ERROR_KEY_DELETED},
};

UINT ErrorStringId(DWORD error) {
    for (const ErrorText& entry : kErrorTexts)
        if (entry.error == error)
            return entry.stringId;
    return IDS_ERROR_UNKNOWN;
}

} // namespace

const WCHAR* DbHandle::ReportError(const WCHAR* format, const WCHAR* nameForMessage) {
    const DWORD error = GetLastError();
    LoadText(ErrorStringId(error), errorText);
    if (reportErrors && MayShowFailure())
        ShowError(format, nameForMessage);
    SetLastError(error);
    return errorText;
}

void DbHandle::ShowError(const WCHAR* format, const WCHAR* nameForMessage) {
    // Quirk: name first, reason second, whatever the format asks for: one with a single argument shows the
    // name where one would expect the reason.
    WCHAR message[2 * kTextRoom + kNameRoom];
    wsprintfW(message, format, nameForMessage ? nameForMessage : name, errorText);
    SetCursor(nullptr);
    MessageText(ownerWindow, message, kFailureBox);
}

void DbHandle::ReportStoreFailure(HWND owner) {
    DbHandle(owner).Report(IDS_COULD_NOT_OPEN, u"*"); // whatever their names are
}

bool DbHandle::Walk(SeekOperation seek, DWORD* index) {
    bool found = false;
    {
        const QuietReports quiet(*this);
        found = (this->*seek)(index, nullptr);
    }
    walkEnded = !found && GetLastError() == ERROR_NO_MORE_ITEMS;
    if (!found && !walkEnded && handle != INVALID_HANDLE_VALUE)
        Report(IDS_COULD_NOT_FIND_RECORD);
    return found;
}

bool WalkToFirst(DbHandle& db, DWORD* index) {
    return db.Walk(&DbHandle::SeekFirst, index);
}

bool WalkToNext(DbHandle& db, DWORD* index) {
    return db.Walk(&DbHandle::SeekNext, index);
}
