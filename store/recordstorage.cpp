// A record's storage form: the record's block with offsets from its start where the pointers were.
#include "platform/errors.h"
#include "resources/resource.h"
#include "store/dbhandle.h"

namespace {

// Where an entry's value holds a pointer: null for types that carry their value inline.
enum class Pointer { None, Text, Blob };

Pointer PointerOf(const CEPROPVAL& property) {
    switch (TypeFromPropID(property.propid)) {
    case CEVT_LPWSTR:
        return Pointer::Text;
    case CEVT_BLOB:
        return Pointer::Blob;
    }
    return Pointer::None;
}

// An absent text and an empty blob point nowhere, which offset 0 says: the entries stand there, never their
// data.
constexpr DWORD kNowhere = 0;

DWORD ToOffset(DWORD address, DWORD base) {
    return address ? address - base : kNowhere;
}

void ToOffsets(RecordBuffer& buffer) {
    const DWORD base = ArenaAddress(buffer.data);
    for (CEPROPVAL* property = buffer.Properties(); property != buffer.Properties() + buffer.propCount;
         ++property) {
        CEVALUNION& value = property->val;
        if (PointerOf(*property) == Pointer::Text)
            value.lpwstr = DevicePointer<WCHAR>::FromAddress(ToOffset(value.lpwstr.Address(), base));
        else if (PointerOf(*property) == Pointer::Blob)
            value.blob.lpb = DevicePointer<BYTE>::FromAddress(ToOffset(value.blob.lpb.Address(), base));
    }
}

// A text from `offset` to its terminator lies behind the entries and within the block.
bool TextFits(const RecordBuffer& buffer, DWORD offset, DWORD entriesEnd) {
    if (offset < entriesEnd || offset >= buffer.size || offset % sizeof(WCHAR) != 0)
        return false;
    const WCHAR* text = reinterpret_cast<const WCHAR*>(buffer.data + offset);
    for (DWORD left = (buffer.size - offset) / sizeof(WCHAR); left > 0; --left, ++text)
        if (*text == 0)
            return true;
    return false;
}

bool BlobFits(const RecordBuffer& buffer, DWORD offset, DWORD bytes, DWORD entriesEnd) {
    return offset >= entriesEnd && offset <= buffer.size && bytes <= buffer.size - offset;
}

// False when an entry's data does not lie in the block; the entry is then as it was.
bool ToPointer(CEPROPVAL* property, const RecordBuffer& buffer, DWORD entriesEnd) {
    const DWORD base = ArenaAddress(buffer.data);
    CEVALUNION& value = property->val;
    switch (PointerOf(*property)) {
    case Pointer::None:
        return true;
    case Pointer::Text: {
        const DWORD offset = value.lpwstr.Address();
        if (offset != kNowhere && !TextFits(buffer, offset, entriesEnd))
            return false;
        value.lpwstr = DevicePointer<WCHAR>::FromAddress(offset == kNowhere ? 0 : base + offset);
        return true;
    }
    case Pointer::Blob: {
        // The offset of a blob without bytes is whatever its writer left there.
        const DWORD offset = value.blob.dwCount == 0 ? kNowhere : value.blob.lpb.Address();
        if (value.blob.dwCount != 0 && !BlobFits(buffer, offset, value.blob.dwCount, entriesEnd))
            return false;
        value.blob.lpb = DevicePointer<BYTE>::FromAddress(offset == kNowhere ? 0 : base + offset);
        return true;
    }
    }
    return true;
}

bool ToPointers(RecordBuffer& buffer) {
    const DWORD entriesEnd = buffer.propCount * sizeof(CEPROPVAL);
    if (entriesEnd > buffer.size || LocalSize(buffer.data) < buffer.size)
        return false;
    for (CEPROPVAL* property = buffer.Properties(); property != buffer.Properties() + buffer.propCount;
         ++property)
        if (!ToPointer(property, buffer, entriesEnd))
            return false;
    return true;
}

} // namespace

CEOID DbHandle::ReadRecordForStorage(RecordBuffer* buffer) {
    const CEOID record = ReadRecord(buffer);
    if (record && buffer->propCount != 0)
        ToOffsets(*buffer);
    return record;
}

CEOID DbHandle::WriteRecordFromStorage(CEOID record, RecordBuffer* buffer) {
    if (!IsOpen())
        return 0;
    if (buffer->propCount != 0 && !ToPointers(*buffer)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        Report(IDS_COULD_NOT_WRITE_RECORD);
        return 0;
    }
    return WriteRecord(record, *buffer);
}
