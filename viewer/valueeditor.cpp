#include "viewer/valueeditor.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "app/uiservices.h"
#include "platform/controls.h"
#include "platform/datetime.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "resources/resource.h"
#include "store/datetimetext.h"
#include "store/propertyvalues.h"

namespace {

constexpr WCHAR kBeyondAscii = 0x80;
constexpr int kSpareCharacters = 2; // behind a text read from its editor

template <typename Small>
bool FitsType(bool translated, std::int64_t number) {
    return translated && number >= std::numeric_limits<Small>::min() &&
           number <= std::numeric_limits<Small>::max();
}

SYSTEMTIME ReadLocalDate(HWND dialog) {
    SYSTEMTIME date = {};
    SYSTEMTIME time = {};
    SendDlgItemMessageW(dialog, IDC_VALUE_DATE, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&date));
    SendDlgItemMessageW(dialog, IDC_VALUE_TIME, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time));
    date.wHour = time.wHour;
    date.wMinute = time.wMinute;
    date.wSecond = time.wSecond;
    date.wMilliseconds = 0;
    return date;
}

bool ParseNumber(HWND dialog, const CEPROPVAL& stored, CEVALUNION* value) {
    const WORD type = TypeFromPropID(stored.propid);
    BOOL translated = FALSE;
    switch (type) {
    case CEVT_I2:
        return ReadSmallNumber(dialog, type, value) && value->iVal != stored.val.iVal;
    case CEVT_UI2:
        return ReadSmallNumber(dialog, type, value) && value->uiVal != stored.val.uiVal;
    case CEVT_I4:
        value->lVal = static_cast<LONG>(GetDlgItemInt(dialog, IDC_VALUE_NUMBER, &translated, TRUE));
        return translated && value->lVal != stored.val.lVal;
    case CEVT_UI4:
        value->ulVal = GetDlgItemInt(dialog, IDC_VALUE_NUMBER, &translated, FALSE);
        return translated && value->ulVal != stored.val.ulVal;
    case CEVT_R8:
        value->dblVal = ReadFloat(dialog);
        return value->dblVal != stored.val.dblVal;
    }
    return false;
}

bool ParseText(HWND dialog, const CEPROPVAL& stored, CEVALUNION* value) {
    WCHAR* text = nullptr;
    if (!ReadEditorText(dialog, &text))
        return false;
    const WCHAR* before = stored.val.lpwstr;
    // lstrcmpW takes an absent text for an empty one: emptying what was empty is no change.
    if (lstrcmpW(text, before) == 0) {
        LocalFree(text);
        return false;
    }
    value->lpwstr = text;
    return true;
}

// Compared as shown, in local time: a stored time that lies outside of the calendar does not survive a
// conversion there and back, and must not count as changed for it.
bool ParseDate(HWND dialog, const CEPROPVAL& stored, CEVALUNION* value) {
    if (!Differs(DateTimeText(ReadLocalDate(dialog)), DateTimeText(stored.val.filetime)))
        return false;
    value->filetime = ReadDate(dialog);
    return true;
}

} // namespace

bool ReadSmallNumber(HWND dialog, WORD type, CEVALUNION* value) {
    BOOL translated = FALSE;
    if (type == CEVT_I2) {
        const auto number = static_cast<LONG>(GetDlgItemInt(dialog, IDC_VALUE_NUMBER, &translated, TRUE));
        value->iVal = static_cast<std::int16_t>(number);
        if (FitsType<std::int16_t>(translated, number))
            return true;
        MessageFromString(dialog, IDS_INT_OUT_OF_RANGE, kFailureBox);
        return false;
    }
    const UINT number = GetDlgItemInt(dialog, IDC_VALUE_NUMBER, &translated, FALSE);
    value->uiVal = static_cast<WORD>(number);
    if (FitsType<WORD>(translated, number))
        return true;
    MessageFromString(dialog, IDS_UINT_OUT_OF_RANGE, kFailureBox);
    return false;
}

namespace {

// As far as the text is a number; a sign does not belong to it. The words for what is no finite number, which
// the library would read as such, are none.
double ParseMagnitude(const WCHAR* text) {
    if (*text != u'.' && (*text < u'0' || *text > u'9'))
        return 0.0;
    char narrow[kValueTextCapacity];
    int length = 0;
    for (; *text && *text < kBeyondAscii && length < kValueTextCapacity; ++text)
        narrow[length++] = static_cast<char>(*text);
    double value = 0.0;
    const auto [end, error] = std::from_chars(narrow, narrow + length, value);
    if (error == std::errc::result_out_of_range)
        return std::find(static_cast<const char*>(narrow), end, '-') != end ? 0.0 : HUGE_VAL;
    return value;
}

} // namespace

double ReadFloat(HWND dialog) {
    WCHAR text[kValueTextCapacity];
    GetDlgItemTextW(dialog, IDC_VALUE_NUMBER, text, kValueTextCapacity);
    const WCHAR* character = text;
    while (IsSpaceCharacter(*character))
        ++character;
    const bool negative = *character == u'-';
    if (negative || *character == u'+')
        ++character;
    const double magnitude = ParseMagnitude(character);
    return negative ? -magnitude : magnitude;
}

FILETIME ReadDate(HWND dialog) {
    const SYSTEMTIME date = ReadLocalDate(dialog);
    FILETIME local = {};
    FILETIME utc = {};
    SystemTimeToFileTime(&date, &local);
    LocalFileTimeToFileTime(&local, &utc);
    return utc;
}

void ShowDate(HWND dialog, const SYSTEMTIME& local) {
    SendDlgItemMessageW(dialog, IDC_VALUE_DATE, DTM_SETSYSTEMTIME, GDT_VALID,
                        reinterpret_cast<LPARAM>(&local));
    SendDlgItemMessageW(dialog, IDC_VALUE_TIME, DTM_SETSYSTEMTIME, GDT_VALID,
                        reinterpret_cast<LPARAM>(&local));
}

bool ReadEditorText(HWND dialog, WCHAR** text) {
    *text = nullptr;
    const HWND editor = GetDlgItem(dialog, IDC_VALUE_TEXT);
    const int length = GetWindowTextLengthW(editor);
    if (length == 0)
        return true;
    *text = static_cast<WCHAR*>(LocalAlloc(LMEM_ZEROINIT, (length + kSpareCharacters) * sizeof(WCHAR)));
    if (!*text) {
        SHShowOutOfMemory(dialog, 0);
        return false;
    }
    GetWindowTextW(editor, *text, length + kSpareCharacters);
    return true;
}

UINT InfoStringId(WORD type) {
    switch (type) {
    case CEVT_I2:
        return IDS_INFO_INT;
    case CEVT_UI2:
        return IDS_INFO_UINT;
    case CEVT_I4:
        return IDS_INFO_LONG;
    case CEVT_UI4:
        return IDS_INFO_ULONG;
    case CEVT_R8:
        return IDS_INFO_FLOAT;
    }
    return 0;
}

bool ParseEditedValue(HWND dialog, const CEPROPVAL& stored, const EditorState& state, CEPROPVAL* value) {
    *value = {};
    value->propid = stored.propid;
    switch (TypeFromPropID(stored.propid)) {
    case CEVT_BOOL:
        value->val.boolVal = IsDlgButtonChecked(dialog, IDC_VALUE_TRUE) == BST_CHECKED;
        return value->val.boolVal != stored.val.boolVal;
    case CEVT_FILETIME:
        return ParseDate(dialog, stored, &value->val);
    case CEVT_LPWSTR:
        return state.textModified && ParseText(dialog, stored, &value->val);
    }
    return state.numberModified && ParseNumber(dialog, stored, &value->val);
}
