// Short forms for tests of the store: records written as lists of properties and read back as text.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/objectstore.h"
#include "tests/platform/hostsupport.h"
#include "tests/support/testdevice.h"

// Of records and of their keys, whatever database they belong to.
inline std::int64_t RowsLeft() {
    storage::Statement left(storage::TheStore()->connection,
                            "SELECT (SELECT count(*) FROM records) + (SELECT count(*) FROM sortkeys)");
    return left.Row() ? left.Number(0) : -1;
}

constexpr CEPROPID Prop(WORD number, WORD type) {
    return static_cast<CEPROPID>(number) << 16 | type;
}

// Values whose strings and blobs live in the local heap until the object goes.
class Values {
public:
    Values() = default;
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;
    ~Values() {
        for (void* block : blocks)
            LocalFree(block);
    }

    Values& Number(WORD number, LONG value) {
        Add(Prop(number, CEVT_I4)).val.lVal = value;
        return *this;
    }
    Values& Text(WORD number, std::u16string_view text) {
        WCHAR* copy = static_cast<WCHAR*>(Block((text.size() + 1) * sizeof(WCHAR)));
        text.copy(copy, text.size());
        Add(Prop(number, CEVT_LPWSTR)).val.lpwstr = copy;
        return *this;
    }
    Values& Blob(WORD number, std::string_view bytes) {
        BYTE* copy = static_cast<BYTE*>(Block(bytes.size()));
        bytes.copy(reinterpret_cast<char*>(copy), bytes.size());
        CEPROPVAL& value = Add(Prop(number, CEVT_BLOB));
        value.val.blob.dwCount = static_cast<DWORD>(bytes.size());
        value.val.blob.lpb = copy;
        return *this;
    }
    Values& Remove(CEPROPID id) {
        Add(id).wFlags = CEDB_PROPDELETE;
        return *this;
    }
    CEPROPVAL& Add(CEPROPID id) {
        CEPROPVAL& value = list.emplace_back();
        std::memset(&value, 0, sizeof(value));
        value.propid = id;
        return value;
    }

    CEOID Write(HANDLE database, CEOID record = 0) const {
        return CeWriteRecordProps(database, record, static_cast<WORD>(list.size()), list.data());
    }

    std::vector<CEPROPVAL> list;

private:
    void* Block(std::size_t bytes) { return blocks.emplace_back(LocalAlloc(LMEM_ZEROINIT, bytes)); }

    std::vector<void*> blocks;
};

// The current record as read into a block of its own.
struct ReadBack {
    explicit ReadBack(HANDLE database) {
        record = CeReadRecordProps(database, CEDB_ALLOWREALLOC, &count, nullptr, &block, &size);
    }
    ReadBack(const ReadBack&) = delete;
    ReadBack& operator=(const ReadBack&) = delete;
    ~ReadBack() { LocalFree(block); }

    const CEPROPVAL& operator[](std::size_t at) const {
        return reinterpret_cast<const CEPROPVAL*>(block)[at];
    }

    CEOID record = 0;
    WORD count = 0;
    BYTE* block = nullptr;
    DWORD size = 0;
};

inline HANDLE OpenById(CEOID database, CEPROPID sort = 0, HWND notify = nullptr) {
    return CeOpenDatabase(&database, nullptr, sort, 0, notify);
}

// 0, with the last error, when there is none of that name.
inline CEOID FindDatabase(const WCHAR* name) {
    CEOID oid = 0;
    const HANDLE found = CeOpenDatabase(&oid, name, 0, 0, nullptr);
    return found != INVALID_HANDLE_VALUE && CloseHandle(found) ? oid : 0;
}

// Where a seek leads: the record and its index, or nowhere.
using Place = std::pair<CEOID, DWORD>;
constexpr Place kNowhere = {0, 0xFFFFFFFF};

inline Place Seek(HANDLE database, DWORD type, std::int64_t value = 0) {
    Place found = kNowhere;
    found.first = CeSeekDatabase(database, type, static_cast<DWORD>(value), &found.second);
    return found;
}

inline CEDBASEINFO InfoOf(CEOID database) {
    CEOIDINFO info{};
    EXPECT_TRUE(CeOidGetInfo(database, &info));
    EXPECT_EQ(info.wObjType, OBJTYPE_DATABASE);
    return info.infDatabase;
}
