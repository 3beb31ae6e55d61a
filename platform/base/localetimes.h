// Dates and times in the host's locale. The host's library takes microseconds for each text, so what it says
// is kept: parts of times, and days.
#pragma once

#include <string_view>

#include "platform/datetime.h"

// Both take valid fields; each text stands until the next call.
std::u16string_view ShortDateText(const SYSTEMTIME& date);
std::u16string_view ShortTimeText(const SYSTEMTIME& time, bool withSeconds);
