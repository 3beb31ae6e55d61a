#include "store/propertyvalues.h"

#include <algorithm>
#include <charconv>

#include "app/uiservices.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/datetimetext.h"

namespace {

struct TypeNames {
    WORD type;
    const WCHAR* listName;
    const WCHAR* sizeText; // null: depends on the value
    const WCHAR* sortLabel;
};

constexpr TypeNames kTypes[] = {
    {CEVT_I2, u"INT", u"2", u"Int (%d)"},
    {CEVT_UI2, u"UINT", u"2", u"UInt (%d)"},
    {CEVT_I4, u"LONG", u"4", u"Long (%d)"},
    {CEVT_UI4, u"ULONG", u"4", u"ULong (%d)"},
    {CEVT_R8, u"FLOAT", u"8", u"Float (%d)"},
    {CEVT_BOOL, u"BOOLEAN", u"1", u"Boolean (%d)"},
    {CEVT_FILETIME, u"DATE", u"8", u"Date (%d)"},
    {CEVT_LPWSTR, u"TEXT", nullptr, u"Text (%d)"},
    {CEVT_BLOB, u"BINARY", nullptr, u"Binary (%d)"},
};

const TypeNames* FindType(WORD type) {
    for (const TypeNames& entry : kTypes)
        if (entry.type == type)
            return &entry;
    return nullptr;
}

// An export writes them by the hundred thousand.
template <typename Number>
void FormatNumber(Number value, WCHAR (&buffer)[kValueTextCapacity]) {
    char digits[16];
    const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    *std::copy(static_cast<const char*>(digits), end, buffer) = 0;
}

void FormatDate(const FILETIME& utc, WCHAR (&buffer)[kValueTextCapacity]) {
    DateTimeText moment(utc);
    wsprintfW(buffer, u"%s %s", moment.DateText(), moment.TimeText(false));
}

} // namespace

const WCHAR* TypeListName(WORD type) {
    const TypeNames* entry = FindType(type);
    return entry ? entry->listName : nullptr;
}

void TypeSizeText(const CEPROPVAL& property, WCHAR (&text)[kLabelCapacity]) {
    const TypeNames* entry = FindType(TypeFromPropID(property.propid));
    if (!entry)
        text[0] = 0;
    else if (entry->sizeText)
        CopyText(text, entry->sizeText);
    else if (entry->type == CEVT_LPWSTR)
        wsprintfW(text, u"%u", static_cast<DWORD>(lstrlenW(property.val.lpwstr)));
    else
        wsprintfW(text, u"%u", property.val.blob.dwCount);
}

void SortMenuLabel(CEPROPID property, WCHAR (&text)[kLabelCapacity]) {
    const TypeNames* entry = FindType(TypeFromPropID(property));
    wsprintfW(text, entry ? entry->sortLabel : u"Unknown (%d)", HIWORD(property));
}

const WCHAR* FormatPropertyText(const CEPROPVAL& property, WCHAR (&buffer)[kValueTextCapacity]) {
    const CEVALUNION& value = property.val;
    switch (TypeFromPropID(property.propid)) {
    case CEVT_I2:
        FormatNumber(value.iVal, buffer);
        break;
    case CEVT_UI2:
        FormatNumber(value.uiVal, buffer);
        break;
    case CEVT_I4:
        FormatNumber(value.lVal, buffer);
        break;
    case CEVT_UI4:
        FormatNumber(value.ulVal, buffer);
        break;
    case CEVT_R8:
        FormatFloatText(value.dblVal, kFloatPlaces, buffer);
        break;
    case CEVT_FILETIME:
        FormatDate(value.filetime, buffer);
        break;
    case CEVT_BOOL:
        LoadText(value.boolVal ? IDS_TRUE : IDS_FALSE, buffer);
        break;
    case CEVT_LPWSTR:
        return value.lpwstr.Address() ? static_cast<const WCHAR*>(value.lpwstr) : u"";
    case CEVT_BLOB:
        LoadText(IDS_BINARY_DATA, buffer);
        break;
    default:
        LoadText(IDS_UNKNOWN_DATA_TYPE, buffer);
        break;
    }
    return buffer;
}
