// What to find, and the dialog that asks for it.
#pragma once

#include "store/dbhandle.h"
#include "viewer/recordviewer.h"

struct FindOptions {
    virtual ~FindOptions() = default;

    DWORD searchNumProp = 0; // numbers and dates too
    DWORD matchCase = 0;
    WCHAR text[kFindTextCapacity] = {};
};

// True when the user confirmed; the options are then the user's.
bool ShowFindDialog(HWND owner, FindOptions* options);

// The first property whose text form contains the text; wildcards mean nothing. Lowers the record's texts
// unless case counts.
bool RecordContains(const RecordBuffer& record, const FindOptions& options, CEPROPID* hit);
