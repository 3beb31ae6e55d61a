// A moment in local time and its texts, as the locale writes them.
#pragma once

#include "platform/datetime.h"

class DateTimeText {
public:
    DateTimeText();                                     // now
    explicit DateTimeText(const FILETIME& utc);         // converted to local time
    explicit DateTimeText(const SYSTEMTIME& localTime); // local time as it stands

    // The short date; the time with or without seconds. Empty when the text takes more than 15 characters.
    const WCHAR* DateText();
    const WCHAR* TimeText(bool withSeconds);

    SYSTEMTIME time;

private:
    static constexpr int kTextCapacity = 16;
    WCHAR timeText[kTextCapacity] = {};
    WCHAR dateText[kTextCapacity] = {};
};

// To the second: day of week and milliseconds do not count.
bool Differs(const DateTimeText& a, const DateTimeText& b);
