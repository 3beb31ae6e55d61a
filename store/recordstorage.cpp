// A record's storage form: the record's block with offsets from its start where the pointers were.
#include <cstring>

#include "platform/errors.h"
#include "resources/resource.h"
#include "store/dbhandle.h"

namespace {

// What an entry's value points to; types that carry their value inline point to nothing.
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

// The offset of an empty blob. No data can lie there, for a block begins with its entries; a text with this
// offset is refused as one among the entries.
constexpr DWORD kNowhere = 0;

bool HoldsAbsentText(const RecordBuffer& buffer) {
    for (const CEPROPVAL* property = buffer.Properties(); property != buffer.Properties() + buffer.propCount;
         ++property)
        if (PointerOf(*property) == Pointer::Text && property->val.lpwstr.Address() == 0)
            return true;
    return false;
}

// Adds an empty text to the end of the block, which all absent texts are to share, and returns its offset. 0
// with the last error set when memory is short; the block is then unchanged.
DWORD AppendEmptyText(RecordBuffer& buffer) {
    const DWORD offset = buffer.size + buffer.size % sizeof(WCHAR);
    const DWORD size = offset + sizeof(WCHAR);
    const std::size_t before = LocalSize(buffer.data);
    BYTE* data =
        before >= size ? buffer.data : static_cast<BYTE*>(LocalReAlloc(buffer.data, size, LMEM_MOVEABLE));
    if (!data)
        return 0;
    buffer.data = data;
    std::memset(data + buffer.size, 0, size - buffer.size);
    buffer.size = size;
    return offset;
}

// `base` is the address at which the block lay when it was read.
void ToOffsets(RecordBuffer& buffer, DWORD base, DWORD emptyText) {
    for (CEPROPVAL* property = buffer.Properties(); property != buffer.Properties() + buffer.propCount;
         ++property) {
        CEVALUNION& value = property->val;
        if (PointerOf(*property) == Pointer::Text) {
            const DWORD address = value.lpwstr.Address();
            value.lpwstr = DevicePointer<WCHAR>::FromAddress(address ? address - base : emptyText);
        } else if (PointerOf(*property) == Pointer::Blob) {
            const DWORD address = value.blob.lpb.Address();
            value.blob.lpb = DevicePointer<BYTE>::FromAddress(address ? address - base : kNowhere);
        }
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

// False when an entry's data does not lie in the block; the entry is then unchanged.
bool ToPointer(CEPROPVAL* property, const RecordBuffer& buffer, DWORD entriesEnd) {
    const DWORD base = ArenaAddress(buffer.data);
    CEVALUNION& value = property->val;
    switch (PointerOf(*property)) {
    case Pointer::None:
        return true;
    case Pointer::Text: {
        const DWORD offset = value.lpwstr.Address();
        if (!TextFits(buffer, offset, entriesEnd))
            return false;
        value.lpwstr = DevicePointer<WCHAR>::FromAddress(base + offset);
        return true;
    }
    case Pointer::Blob: {
        // A blob without bytes may come with any offset.
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
    if (!record || buffer->propCount == 0)
        return record;
    const DWORD base = ArenaAddress(buffer->data);
    const bool absent = HoldsAbsentText(*buffer); // records of older devices do
    const DWORD emptyText = absent ? AppendEmptyText(*buffer) : 0;
    if (absent && !emptyText) {
        Report(IDS_COULD_NOT_READ_RECORD);
        return 0;
    }
    ToOffsets(*buffer, base, emptyText);
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
