// Dates and times in the host's locale. The host's library takes microseconds for each text, so what it says
// is kept: parts of times, and days.
#pragma once

#include <QString>

#include "platform/datetime.h"

// Both take valid fields.
const QString& ShortDateText(const SYSTEMTIME& date); // until the next call
QString ShortTimeText(const SYSTEMTIME& time, bool withSeconds);
