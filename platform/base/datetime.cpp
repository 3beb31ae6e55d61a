#include "platform/datetime.h"

#include <QLocale>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>

#include "platform/base/clock.h"
#include "platform/base/hosterror.h"
#include "platform/base/localepatterns.h"
#include "platform/base/localetimes.h"
#include "platform/base/outofmemory.h"

namespace {

using Days = std::chrono::sys_days;
using Ticks = std::int64_t; // as in a FILETIME

constexpr Ticks kTicksPerMillisecond = 10000;
constexpr Ticks kTicksPerSecond = 1000 * kTicksPerMillisecond;
constexpr Ticks kTicksPerDay = 24 * 60 * 60 * kTicksPerSecond;
constexpr Days kFirstDay = Days(std::chrono::year(1601) / 1 / 1);
constexpr Days kHostFirstDay = Days(std::chrono::year(1970) / 1 / 1);
constexpr Ticks kHostEpoch = (kHostFirstDay - kFirstDay).count() * kTicksPerDay;
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;
constexpr Days kEndDay = Days(std::chrono::year(kLastYear + 1) / 1 / 1);
constexpr Ticks kEnd = (kEndDay - kFirstDay).count() * kTicksPerDay; // some days before the largest number

Ticks TicksOf(const FILETIME& time) {
    return static_cast<Ticks>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
}

FILETIME FileTimeOf(Ticks ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

BOOL Invalid() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

std::time_t HostSeconds(Ticks utc) {
    const Ticks sinceEpoch = utc - kHostEpoch;
    return sinceEpoch / kTicksPerSecond - (sinceEpoch % kTicksPerSecond < 0);
}

// The zone as the host has it now. Its file is looked at no more than twice a second: that costs more than
// all else about a time. Returns how often that was done.
unsigned NoticeZone() {
    static char known[64]; // a longer name is looked up each time
    static std::chrono::milliseconds noticed;
    static bool before = false;
    static unsigned looks = 0;
    const char* const variable = std::getenv("TZ");
    const char* const zone = variable ? variable : "";
    if (before && std::strcmp(known, zone) == 0 && RoughClock() - noticed < std::chrono::milliseconds(500))
        return looks;
    tzset();
    before = std::strlen(zone) < sizeof known;
    if (before)
        std::copy_n(zone, std::strlen(zone) + 1, known);
    noticed = RoughClock();
    return ++looks;
}

Ticks HostOffset(std::time_t seconds) {
    std::tm fields{};
    return localtime_r(&seconds, &fields) ? fields.tm_gmtoff * kTicksPerSecond : 0;
}

// How far the local zone is ahead of UTC at a moment. Days on which it stays the same are kept for a while,
// as the host's library takes long to find that out.
Ticks ZoneOffset(Ticks utc) {
    struct KeptOffset {
        unsigned look = 0;
        std::time_t day = 0;
        bool changes = false;
        Ticks offset = 0;
    };
    constexpr std::time_t kDaySeconds = 24 * 60 * 60;
    static std::array<KeptOffset, 1024> days; // about three years in a row
    const std::time_t seconds = HostSeconds(utc);
    const std::time_t day = seconds / kDaySeconds - (seconds % kDaySeconds < 0);
    const unsigned look = NoticeZone();
    KeptOffset& kept = days[static_cast<std::size_t>(day) % days.size()];
    if (kept.look != look || kept.day != day) {
        const Ticks offset = HostOffset(day * kDaySeconds);
        kept = {look, day, HostOffset((day + 1) * kDaySeconds) != offset, offset};
    }
    return kept.changes ? HostOffset(seconds) : kept.offset;
}

bool InCalendar(Ticks ticks) {
    return ticks >= 0 && ticks < kEnd;
}

BOOL Store(Ticks ticks, FILETIME* result) {
    if (!InCalendar(ticks))
        return Invalid();
    *result = FileTimeOf(ticks);
    return TRUE;
}

bool ValidDate(const SYSTEMTIME& time) {
    if (time.wYear < kFirstYear || time.wYear > kLastYear || time.wMonth > 12 || time.wDay > 31)
        return false; // also what a calendar date of the library cannot hold
    return (std::chrono::year(time.wYear) / time.wMonth / time.wDay).ok();
}

bool ValidTime(const SYSTEMTIME& time) {
    return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds < 1000;
}

int Deliver(std::u16string_view text, WCHAR* out, int capacity) {
    if (text.size() >= static_cast<std::size_t>(capacity)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    out[text.copy(out, text.size())] = 0;
    return static_cast<int>(text.size()) + 1;
}

bool Clear(WCHAR* text, int capacity) {
    if (!text || capacity <= 0)
        return false;
    text[0] = 0;
    return true;
}

} // namespace

// The locale's long time names a zone, so the pattern is its short time, whose seconds come and go: they
// stand behind the minutes, after the same separator.
QString TimePattern(const QLocale& locale, bool withSeconds) {
    QString pattern = locale.timeFormat(QLocale::ShortFormat);
    pattern.replace(QLatin1Char('B'), QLatin1String("AP")); // the part of the day, which Qt would show as a B
    const qsizetype minutes = pattern.indexOf(QLatin1Char('m'));
    if (minutes <= 0)
        return pattern;
    const QString seconds = pattern.at(minutes - 1) + QLatin1String("ss");
    pattern.remove(seconds);
    return withSeconds ? pattern.insert(pattern.lastIndexOf(QLatin1Char('m')) + 1, seconds) : pattern;
}

FILETIME Now() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return FileTimeOf(kHostEpoch + std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() / 100);
}

std::chrono::milliseconds RoughClock() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::chrono::seconds(now.tv_sec) +
           std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::nanoseconds(now.tv_nsec));
}

void GetLocalTime(SYSTEMTIME* time) {
    const FILETIME now = Now();
    FILETIME local{};
    FileTimeToLocalFileTime(&now, &local);
    FileTimeToSystemTime(&local, time);
}

BOOL FileTimeToLocalFileTime(const FILETIME* utc, FILETIME* local) {
    const Ticks ticks = TicksOf(*utc);
    return InCalendar(ticks) ? Store(ticks + ZoneOffset(ticks), local) : Invalid();
}

BOOL LocalFileTimeToFileTime(const FILETIME* local, FILETIME* utc) {
    const Ticks ticks = TicksOf(*local);
    if (!InCalendar(ticks))
        return Invalid();
    // The offset in force is that of the day before or that of the day after. Where clocks go back both hold,
    // and the one from before gives the earlier moment; where they skip an hour neither does, and it moves
    // the time on.
    const Ticks before = ZoneOffset(ticks - kTicksPerDay);
    const Ticks after = ZoneOffset(ticks + kTicksPerDay);
    const bool changed = ZoneOffset(ticks - before) != before && ZoneOffset(ticks - after) == after;
    return Store(ticks - (changed ? after : before), utc);
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* systemTime) {
    const Ticks ticks = TicksOf(*fileTime);
    if (!InCalendar(ticks))
        return Invalid();
    const Days day = kFirstDay + std::chrono::days(ticks / kTicksPerDay);
    const std::chrono::year_month_day date(day);
    const auto milliseconds = static_cast<DWORD>(ticks % kTicksPerDay / kTicksPerMillisecond);
    *systemTime = {static_cast<WORD>(static_cast<int>(date.year())),
                   static_cast<WORD>(static_cast<unsigned>(date.month())),
                   static_cast<WORD>(std::chrono::weekday(day).c_encoding()),
                   static_cast<WORD>(static_cast<unsigned>(date.day())),
                   static_cast<WORD>(milliseconds / 3600000),
                   static_cast<WORD>(milliseconds / 60000 % 60),
                   static_cast<WORD>(milliseconds / 1000 % 60),
                   static_cast<WORD>(milliseconds % 1000)};
    return TRUE;
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime) {
    if (!ValidDate(*systemTime) || !ValidTime(*systemTime))
        return Invalid();
    const Days day = std::chrono::year(systemTime->wYear) / systemTime->wMonth / systemTime->wDay;
    const Ticks milliseconds =
        ((systemTime->wHour * 60 + systemTime->wMinute) * 60 + systemTime->wSecond) * Ticks{1000} +
        systemTime->wMilliseconds;
    *fileTime = FileTimeOf((day - kFirstDay).count() * kTicksPerDay + milliseconds * kTicksPerMillisecond);
    return TRUE;
}

LONG CompareFileTime(const FILETIME* left, const FILETIME* right) {
    const auto leftTicks = static_cast<std::uint64_t>(TicksOf(*left));
    const auto rightTicks = static_cast<std::uint64_t>(TicksOf(*right));
    return (leftTicks > rightTicks) - (leftTicks < rightTicks);
}

int GetDateFormatW(DWORD, DWORD, const SYSTEMTIME* date, const WCHAR*, WCHAR* text, int capacity) {
    if (!Clear(text, capacity) || !ValidDate(*date))
        return Invalid();
    return UnlessOutOfMemory(0, [=] { return Deliver(ShortDateText(*date), text, capacity); });
}

int GetTimeFormatW(DWORD, DWORD flags, const SYSTEMTIME* time, const WCHAR*, WCHAR* text, int capacity) {
    if (!Clear(text, capacity) || !ValidTime(*time))
        return Invalid();
    return UnlessOutOfMemory(
        0, [=] { return Deliver(ShortTimeText(*time, !(flags & TIME_NOSECONDS)), text, capacity); });
}

DWORD GetTickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
