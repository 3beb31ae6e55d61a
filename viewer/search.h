// Finding a text in the records of a database.
#pragma once

#include "store/dbhandle.h"

constexpr int kFindTextCapacity = 260;

struct FindOptions {
    virtual ~FindOptions() = default;

    DWORD searchNumProp = 0; // numbers and dates too
    DWORD matchCase = 0;
    WCHAR text[kFindTextCapacity] = {};
};

class RecordSearch {
public:
    RecordSearch(HWND owner, DbHandle& database, const FindOptions& options);

    enum class Result { Found, NotFound, BrokenOff };
    // Searches behind the record that the handle stands on, whose index is given, to the end and, if the user
    // wants that, once more from the first record. A search that breaks off has been reported.
    Result Run(DWORD startIndex);

    // What was found.
    DWORD Index() const { return index; }
    CEPROPID Hit() const { return hit; } // the first property of the record that contains the text

private:
    bool Step(DbHandle::SeekOperation seek);
    bool SearchOn();
    // Looks for a property whose text form contains the text; there are no wildcards. Changes the record's
    // texts to lower case unless case counts.
    bool RecordContains();

    HWND owner;
    DbHandle& database;
    FindOptions options;
    RecordBuffer record;
    DWORD index = 0;
    CEPROPID hit = 0;
};
