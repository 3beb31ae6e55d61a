#include "tests/support/sampledatabases.h"

#include <gtest/gtest.h>

#include "store/dbhandle.h"
#include "store/propertyvalues.h"
#include "tests/storage/storesupport.h"

namespace {

CEOID Write(HANDLE database, const std::vector<SampleValue>& values) {
    Values record;
    for (const SampleValue& value : values) {
        const WORD type = TypeFromPropID(value.id);
        const auto number = static_cast<std::int64_t>(value.number);
        if (type == CEVT_LPWSTR && !value.absent) {
            record.Text(HIWORD(value.id), value.text);
            continue;
        }
        CEVALUNION& written = record.Add(value.id).val;
        if (type == CEVT_R8)
            written.dblVal = value.number;
        else if (type == CEVT_FILETIME)
            written.filetime = {static_cast<DWORD>(number), static_cast<DWORD>(number >> 32)};
        else if (type != CEVT_BLOB) // which is an empty one
            written.lVal = static_cast<LONG>(number);
    }
    const CEOID made = record.Write(database);
    EXPECT_NE(made, 0u);
    return made;
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
