// The first start: there is no device yet, and the user is asked what to put on a new one.
#pragma once

#include <QString>

enum class FirstStart { GoOn, Cancelled, Failed };

// When the usual device is the one to be used and does not exist, asks on the display whether it shall be
// made with sample databases, empty or not at all; nothing is written before the answer. Sample databases are
// made by the program `maker`, which takes a folder. GoOn when there was nothing to ask, when the device is
// there now, and when the caller shall make an empty one; a failure has been reported.
FirstStart OfferFirstDevice(const QString& maker);
// Makes it with sample databases without a question; a failure is reported on standard error alone.
FirstStart MakeFirstDevice(const QString& maker);
