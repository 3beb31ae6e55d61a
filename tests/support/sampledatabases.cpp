#include "tests/support/sampledatabases.h"

#include <cstring>
#include <gtest/gtest.h>

#include "store/dbhandle.h"
#include "store/propertyvalues.h"

namespace {

// Fills a value; a text lies in a block of its own, which the caller releases.
CEPROPVAL ToProperty(const SampleValue& value) {
    CEPROPVAL property = {};
    property.propid = value.id;
    switch (TypeFromPropID(value.id)) {
    case CEVT_LPWSTR:
        if (!value.absent) {
            const std::size_t bytes = (value.text.size() + 1) * sizeof(WCHAR);
            auto* text = static_cast<WCHAR*>(LocalAlloc(LMEM_FIXED, bytes));
            std::memcpy(text, value.text.c_str(), bytes);
            property.val.lpwstr = text;
        }
        break;
    case CEVT_R8:
        property.val.dblVal = value.number;
        break;
    case CEVT_FILETIME: {
        const auto ticks = static_cast<std::int64_t>(value.number);
        property.val.filetime = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
        break;
    }
    case CEVT_BLOB: // an empty one
        break;
    case CEVT_I2:
    case CEVT_UI2:
        property.val.uiVal = static_cast<WORD>(static_cast<std::int64_t>(value.number));
        break;
    default:
        property.val.ulVal = static_cast<DWORD>(static_cast<std::int64_t>(value.number));
        break;
    }
    return property;
}

CEOID Write(HANDLE database, const std::vector<SampleValue>& values) {
    std::vector<CEPROPVAL> properties;
    for (const SampleValue& value : values)
        properties.push_back(ToProperty(value));
    const CEOID record =
        CeWriteRecordProps(database, 0, static_cast<WORD>(properties.size()), properties.data());
    EXPECT_NE(record, 0u);
    for (const CEPROPVAL& property : properties)
        if (TypeFromPropID(property.propid) == CEVT_LPWSTR)
            LocalFree(property.val.lpwstr);
    return record;
}

HANDLE Open(CEOID oid, const WCHAR* name) {
    return CeOpenDatabase(&oid, name, 0, 0, nullptr);
}

} // namespace

void MakeDatabase(const WCHAR* name, const std::vector<std::vector<SampleValue>>& records,
                  std::initializer_list<SORTORDERSPEC> sorts) {
    const CEOID oid = CeCreateDatabase(name, 1, static_cast<WORD>(sorts.size()), sorts.begin());
    ASSERT_NE(oid, 0u);
    const HANDLE database = Open(oid, nullptr);
    for (const std::vector<SampleValue>& record : records)
        Write(database, record);
    CloseHandle(database);
}

CEOID AddRecord(const WCHAR* name, const std::vector<SampleValue>& values) {
    const HANDLE database = Open(0, name);
    const CEOID record = Write(database, values);
    CloseHandle(database);
    return record;
}

std::u16string Contents(const WCHAR* name) {
    DbHandle database(nullptr);
    database.reportErrors = 0;
    if (database.Open(name, 0, 0) == INVALID_HANDLE_VALUE)
        return u"missing";
    std::u16string contents;
    RecordBuffer record;
    DWORD index = 0;
    for (bool found = WalkToFirst(database, &index); found; found = WalkToNext(database, &index)) {
        EXPECT_NE(database.ReadRecord(&record), 0u);
        for (WORD place = 0; place < record.propCount; ++place) {
            const CEPROPVAL& property = record.Properties()[place];
            WCHAR text[kValueTextCapacity];
            const std::string id = std::to_string(HIWORD(property.propid));
            contents += (place ? u" " : u"") + std::u16string(id.begin(), id.end()) + u"=" +
                        FormatPropertyText(property, text);
        }
        contents += u"\n";
    }
    return contents;
}

std::vector<std::u16string> DatabaseNames() {
    std::vector<std::u16string> names;
    const HANDLE databases = CeFindFirstDatabase(0);
    while (const CEOID oid = CeFindNextDatabase(databases)) {
        CEOIDINFO info = {};
        if (CeOidGetInfo(oid, &info))
            names.emplace_back(info.infDatabase.szDbaseName);
    }
    CloseHandle(databases);
    return names;
}
