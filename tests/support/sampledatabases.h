// Databases for tests, made through the object-store calls.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "platform/objectstore.h"

// A property value of a test: made by the functions below.
struct SampleValue {
    CEPROPID id;
    double number = 0;        // of every scalar type
    std::u16string text = {}; // CEVT_LPWSTR
    bool absent = false;      // a text that is not there
};

inline SampleValue TextValue(WORD id, std::u16string text) {
    return {CEPROPID(id) << 16 | CEVT_LPWSTR, 0, std::move(text)};
}
inline SampleValue NumberValue(WORD id, WORD type, double number) {
    return {CEPROPID(id) << 16 | type, number};
}

void MakeDatabase(const WCHAR* name, const std::vector<std::vector<SampleValue>>& records,
                  std::initializer_list<SORTORDERSPEC> sorts = {});
// Adds a record to a database that is there; returns its id.
CEOID AddRecord(const WCHAR* name, const std::vector<SampleValue>& values);
// One line a record: "1=Ann 2=5", in the order in which they were made. "missing" when there is no such
// database.
std::u16string Contents(const WCHAR* name);
std::vector<std::u16string> DatabaseNames();
