// How the sample databases are written: one table each, filled record by record.
#pragma once

#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "platform/objectstore.h"

constexpr CEPROPID PropertyId(WORD number, WORD type) {
    return static_cast<CEPROPID>(number) << 16 | type;
}

// One record being put together. Strings and blobs are copied into the local heap, which it gives back.
class SampleRecord {
public:
    SampleRecord() = default;
    ~SampleRecord();
    SampleRecord(const SampleRecord&) = delete;
    SampleRecord& operator=(const SampleRecord&) = delete;

    // The value must be of the identifier's type. An empty text is left out, as applications leave out what
    // nobody filled in.
    SampleRecord& Text(CEPROPID id, std::u16string_view text);
    SampleRecord& Number(CEPROPID id, std::int64_t value); // whole numbers of any width, and truth values
    SampleRecord& Real(CEPROPID id, double value);
    SampleRecord& Time(CEPROPID id, const FILETIME& utc);
    SampleRecord& Bytes(CEPROPID id, std::span<const BYTE> bytes);

private:
    friend class SampleTable;

    CEPROPVAL& Append(CEPROPID id);
    void* Copied(const void* bytes, std::size_t count);

    std::vector<CEPROPVAL> properties;
    std::vector<void*> blocks;
    bool complete = true; // the heap had room for everything
};

// One database being filled. After a failure nothing more is written.
class SampleTable {
public:
    SampleTable(const WCHAR* name, DWORD type, std::initializer_list<SORTORDERSPEC> orders);
    ~SampleTable();
    SampleTable(const SampleTable&) = delete;
    SampleTable& operator=(const SampleTable&) = delete;

    void Add(const SampleRecord& record);
    bool Succeeded() const { return succeeded; }

private:
    HANDLE handle = INVALID_HANDLE_VALUE;
    bool succeeded = false;
};
