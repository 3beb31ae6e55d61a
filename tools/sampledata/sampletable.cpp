#include "tools/sampledata/sampletable.h"

#include <algorithm>
#include <string>

SampleRecord::~SampleRecord() {
    for (void* block : blocks)
        LocalFree(block);
}

CEPROPVAL& SampleRecord::Append(CEPROPID id) {
    CEPROPVAL& property = properties.emplace_back();
    property = {};
    property.propid = id;
    return property;
}

void* SampleRecord::Copied(const void* bytes, std::size_t count) {
    void* block = LocalAlloc(LMEM_FIXED, count);
    if (!block) {
        complete = false;
        return nullptr;
    }
    blocks.push_back(block);
    std::copy_n(static_cast<const BYTE*>(bytes), count, static_cast<BYTE*>(block));
    return block;
}

SampleRecord& SampleRecord::Text(CEPROPID id, std::u16string_view text) {
    if (!text.empty()) {
        const std::u16string terminated(text);
        const std::size_t bytes = (terminated.size() + 1) * sizeof(WCHAR);
        Append(id).val.lpwstr = static_cast<WCHAR*>(Copied(terminated.c_str(), bytes));
    }
    return *this;
}

SampleRecord& SampleRecord::Number(CEPROPID id, std::int64_t value) {
    CEVALUNION& member = Append(id).val;
    switch (TypeFromPropID(id)) {
    case CEVT_I2:
        member.iVal = static_cast<std::int16_t>(value);
        break;
    case CEVT_UI2:
        member.uiVal = static_cast<WORD>(value);
        break;
    case CEVT_BOOL:
        member.boolVal = value != 0;
        break;
    default:
        member.lVal = static_cast<LONG>(value);
    }
    return *this;
}

SampleRecord& SampleRecord::Real(CEPROPID id, double value) {
    Append(id).val.dblVal = value;
    return *this;
}

SampleRecord& SampleRecord::Time(CEPROPID id, const FILETIME& utc) {
    Append(id).val.filetime = utc;
    return *this;
}

SampleRecord& SampleRecord::Bytes(CEPROPID id, std::span<const BYTE> bytes) {
    CEBLOB& blob = Append(id).val.blob;
    blob.dwCount = static_cast<DWORD>(bytes.size());
    if (!bytes.empty())
        blob.lpb = static_cast<BYTE*>(Copied(bytes.data(), bytes.size()));
    return *this;
}

SampleTable::SampleTable(const WCHAR* name, DWORD type, std::initializer_list<SORTORDERSPEC> orders) {
    CEOID oid = CeCreateDatabase(name, type, static_cast<WORD>(orders.size()), std::data(orders));
    if (oid)
        handle = CeOpenDatabase(&oid, nullptr, 0, 0, nullptr);
    succeeded = handle != INVALID_HANDLE_VALUE;
}

SampleTable::~SampleTable() {
    if (handle != INVALID_HANDLE_VALUE)
        CloseHandle(handle);
}

void SampleTable::Add(const SampleRecord& record) {
    succeeded =
        succeeded && record.complete &&
        CeWriteRecordProps(handle, 0, static_cast<WORD>(record.properties.size()), record.properties.data());
}
