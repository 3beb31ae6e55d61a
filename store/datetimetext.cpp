#include "store/datetimetext.h"

DateTimeText::DateTimeText() {
    GetLocalTime(&time);
}

DateTimeText::DateTimeText(const FILETIME& utc) : time() {
    // A moment outside the calendar shows as the calendar's first: a time that pickers take, so that a value
    // nobody touched does not look changed.
    FILETIME local = {};
    FileTimeToLocalFileTime(&utc, &local);
    FileTimeToSystemTime(&local, &time);
}

DateTimeText::DateTimeText(const SYSTEMTIME& localTime) : time(localTime) {}

const WCHAR* DateTimeText::DateText() {
    GetDateFormatW(LOCALE_SYSTEM_DEFAULT, DATE_SHORTDATE, &time, nullptr, dateText, kTextCapacity);
    return dateText;
}

const WCHAR* DateTimeText::TimeText(bool withSeconds) {
    GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, withSeconds ? 0 : TIME_NOSECONDS, &time, nullptr, timeText,
                   kTextCapacity);
    return timeText;
}

bool Differs(const DateTimeText& a, const DateTimeText& b) {
    return a.time.wYear != b.time.wYear || a.time.wMonth != b.time.wMonth || a.time.wDay != b.time.wDay ||
           a.time.wHour != b.time.wHour || a.time.wMinute != b.time.wMinute ||
           a.time.wSecond != b.time.wSecond;
}
