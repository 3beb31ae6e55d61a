// Calendar time: conversions, the local zone, and how the host's locale writes it.
//
// The calendar reaches from 1601 to 30827. The local zone is the host's, and each time is shifted by the
// offset that was, is or will be in force at that time. A time outside of the calendar, or fields that name
// no time, fail with ERROR_INVALID_PARAMETER; a failed call leaves its output as it was, unless said
// otherwise.
#pragma once

#include "platform/types.h"

void GetLocalTime(SYSTEMTIME* time); // now, in the local zone

BOOL FileTimeToLocalFileTime(const FILETIME* utc, FILETIME* local);
// A local time that occurs twice is taken as the earlier one; one that a clock change skips moves on by the
// length of the change.
BOOL LocalFileTimeToFileTime(const FILETIME* local, FILETIME* utc);
BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime); // cut to milliseconds
BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime); // wDayOfWeek is not read
LONG CompareFileTime(const FILETIME* left, const FILETIME* right);           // -1, 0 or 1

constexpr DWORD LOCALE_SYSTEM_DEFAULT = 0x0800;
constexpr DWORD DATE_SHORTDATE = 0x0001;
constexpr DWORD TIME_NOSECONDS = 0x0002;
// Write a date, or a time of day, as the host's locale does in short. `capacity` counts characters,
// terminator included; so does the result. 0 on failure: ERROR_INSUFFICIENT_BUFFER when it does not fit,
// ERROR_INVALID_PARAMETER; the text is then empty. `pattern` is null, wDayOfWeek is not read.
int GetDateFormatW(DWORD locale, DWORD flags, const SYSTEMTIME* date, const WCHAR* pattern, WCHAR* text,
                   int capacity);
int GetTimeFormatW(DWORD locale, DWORD flags, const SYSTEMTIME* time, const WCHAR* pattern, WCHAR* text,
                   int capacity);

DWORD GetTickCount(); // milliseconds since some start, wraps around
void Sleep(DWORD milliseconds);
