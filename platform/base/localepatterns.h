// How the host's locale writes dates and times, as patterns of the host's library.
#pragma once

class QLocale;
class QString;

// The short time of day, with its seconds or without them.
QString TimePattern(const QLocale& locale, bool withSeconds);
