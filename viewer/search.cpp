#include "viewer/search.h"

#include <string_view>

#include "app/uiservices.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/propertyvalues.h"
#include "viewer/reporting.h"

namespace {

// Changes the text to lower case unless case counts.
bool Contains(WCHAR* text, std::u16string_view wanted, bool matchCase) {
    if (!matchCase)
        CharLowerW(text);
    return std::u16string_view(text).find(wanted) != std::u16string_view::npos;
}

bool IsNumericOrDate(WORD type) {
    switch (type) {
    case CEVT_I2:
    case CEVT_UI2:
    case CEVT_I4:
    case CEVT_UI4:
    case CEVT_R8:
    case CEVT_FILETIME:
        return true;
    }
    return false;
}

bool PropertyContains(const CEPROPVAL& property, std::u16string_view wanted, const FindOptions& options) {
    const WORD type = TypeFromPropID(property.propid);
    if (type == CEVT_LPWSTR)
        return property.val.lpwstr.Address() && Contains(property.val.lpwstr, wanted, options.matchCase);
    if (!options.searchNumProp || !IsNumericOrDate(type))
        return false;
    WCHAR text[kValueTextCapacity];
    FormatPropertyText(property, text);
    return Contains(text, wanted, options.matchCase);
}

} // namespace

RecordSearch::RecordSearch(HWND owner, DbHandle& database, const FindOptions& options)
    : owner(owner), database(database), options(options) {
    if (!options.matchCase)
        CharLowerW(this->options.text);
}

bool RecordSearch::RecordContains() {
    for (WORD property = 0; property < record.propCount; ++property) {
        if (PropertyContains(record.Properties()[property], options.text, options)) {
            hit = record.Properties()[property].propid;
            return true;
        }
    }
    return false;
}

bool RecordSearch::Step(DbHandle::SeekOperation seek) {
    return WalkAloud(database, seek, &index);
}

// From the record that the handle stands on; false at the end and on a failure.
bool RecordSearch::SearchOn() {
    const WaitCursor wait;
    bool more = true;
    while (more) {
        // A record that cannot be read is passed over.
        if (database.ReadRecord(&record) && RecordContains())
            return true;
        more = Step(&DbHandle::SeekNext);
    }
    return false;
}

RecordSearch::Result RecordSearch::Run(DWORD startIndex) {
    index = startIndex;
    if (Step(&DbHandle::SeekNext) && SearchOn())
        return Result::Found;
    if (!database.WalkEnded())
        return Result::BrokenOff;
    // Quirk: a search that began at the first record does not offer to go on from the beginning, although it
    // has not looked at that record itself.
    if (startIndex == 0 || MessageFromString(owner, IDS_CONFIRM_SEARCH_AGAIN, kQuestionBox) != IDYES)
        return Result::NotFound;
    if (Step(&DbHandle::SeekFirst) && SearchOn())
        return Result::Found;
    return database.WalkEnded() ? Result::NotFound : Result::BrokenOff;
}
