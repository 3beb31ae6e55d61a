#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

#include "platform/base/utf8.h"
#include "platform/datetime.h"
#include "tests/platform/hostsupport.h"

namespace {

FILETIME Ticks(std::uint64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

std::uint64_t Number(const FILETIME& time) {
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

void ExpectInvalid(BOOL result) {
    EXPECT_EQ(FailureOf(result), ERROR_INVALID_PARAMETER);
}

FILETIME Moment(WORD year, WORD month, WORD day, WORD hour, WORD minute) {
    const SYSTEMTIME fields{year, month, 0, day, hour, minute, 0, 0};
    FILETIME time{};
    EXPECT_TRUE(SystemTimeToFileTime(&fields, &time));
    return time;
}

class Zone {
public:
    explicit Zone(const char* name) { setenv("TZ", name, 1); }
    ~Zone() { setenv("TZ", "UTC", 1); }
};

TEST(DateTime, CountsFromTheCalendarsFirstDayToItsLast) {
    const struct {
        std::uint64_t ticks;
        SYSTEMTIME fields;
    } known[] = {
        {0, {1601, 1, 1, 1, 0, 0, 0, 0}},
        {116444736000000000, {1970, 1, 4, 1, 0, 0, 0, 0}},
        {125963423990120000, {2000, 2, 2, 29, 23, 59, 59, 12}},
        {9223149887999990000, {30827, 12, 5, 31, 23, 59, 59, 999}},
    };
    for (const auto& [ticks, fields] : known) {
        SCOPED_TRACE(ticks);
        const FILETIME time = Ticks(ticks);
        SYSTEMTIME shown{};
        FILETIME back{};
        ASSERT_TRUE(FileTimeToSystemTime(&time, &shown));
        EXPECT_EQ(0, std::memcmp(&shown, &fields, sizeof shown));
        ASSERT_TRUE(SystemTimeToFileTime(&fields, &back));
        EXPECT_EQ(Number(back), ticks);
    }
    const FILETIME early = Ticks(0xFFFFFFFF), late = Ticks(0x100000000);
    EXPECT_EQ(CompareFileTime(&early, &late), -1);
    EXPECT_EQ(CompareFileTime(&late, &early), 1);
    EXPECT_EQ(CompareFileTime(&late, &late), 0);
}

TEST(DateTime, TurnsDownWhatIsNoTime) {
    FILETIME time{};
    for (const SYSTEMTIME& fields :
         {SYSTEMTIME{1600, 12, 0, 31, 0, 0, 0, 0}, SYSTEMTIME{30828, 1, 0, 1, 0, 0, 0, 0},
          SYSTEMTIME{2023, 2, 0, 29, 0, 0, 0, 0}, SYSTEMTIME{2023, 0, 0, 1, 0, 0, 0, 0},
          SYSTEMTIME{2023, 257, 0, 1, 0, 0, 0, 0}, SYSTEMTIME{2023, 1, 0, 257, 0, 0, 0, 0},
          SYSTEMTIME{2023, 1, 0, 0, 0, 0, 0, 0}, SYSTEMTIME{2023, 1, 0, 1, 24, 0, 0, 0},
          SYSTEMTIME{2023, 1, 0, 1, 0, 60, 0, 0}, SYSTEMTIME{2023, 1, 0, 1, 0, 0, 60, 0},
          SYSTEMTIME{2023, 1, 0, 1, 0, 0, 0, 1000}})
        ExpectInvalid(SystemTimeToFileTime(&fields, &time));
    const FILETIME beyond[] = {Ticks(9223149888000000000), Ticks(INT64_MAX), Ticks(UINT64_MAX)};
    SYSTEMTIME fields{};
    for (const FILETIME& stored : beyond) {
        ExpectInvalid(FileTimeToSystemTime(&stored, &fields));
        ExpectInvalid(FileTimeToLocalFileTime(&stored, &time));
        ExpectInvalid(LocalFileTimeToFileTime(&stored, &time));
    }
    const Zone zone("America/New_York");
    const FILETIME first = Ticks(0);
    ExpectInvalid(FileTimeToLocalFileTime(&first, &time)); // there it is still 1600
}

TEST(DateTime, ShiftsEachTimeByTheZonesOffsetThen) {
    const Zone zone("Europe/Berlin");
    const struct {
        FILETIME utc, local;
    } moments[] = {
        {Moment(2023, 1, 15, 11, 0), Moment(2023, 1, 15, 12, 0)},
        {Moment(2023, 7, 15, 10, 0), Moment(2023, 7, 15, 12, 0)},
        {Moment(2023, 10, 29, 0, 30), Moment(2023, 10, 29, 2, 30)}, // occurs twice: the earlier
        {Moment(2023, 3, 26, 1, 0), Moment(2023, 3, 26, 3, 0)},
        {Moment(30000, 1, 1, 11, 0), Moment(30000, 1, 1, 12, 0)},
    };
    for (const auto& [utc, local] : moments) {
        FILETIME result{};
        ASSERT_TRUE(FileTimeToLocalFileTime(&utc, &result));
        EXPECT_EQ(Number(result), Number(local));
        ASSERT_TRUE(LocalFileTimeToFileTime(&local, &result));
        EXPECT_EQ(Number(result), Number(utc));
    }
    const FILETIME skipped = Moment(2023, 3, 26, 2, 30);
    FILETIME result{};
    ASSERT_TRUE(LocalFileTimeToFileTime(&skipped, &result));
    EXPECT_EQ(Number(result), Number(Moment(2023, 3, 26, 1, 30)));

    SYSTEMTIME now{};
    GetLocalTime(&now);
    FILETIME local{}, utc{};
    ASSERT_TRUE(SystemTimeToFileTime(&now, &local) && LocalFileTimeToFileTime(&local, &utc));
    const auto seconds = static_cast<std::time_t>((Number(utc) - 116444736000000000) / 10000000);
    EXPECT_LE(std::abs(seconds - std::time(nullptr)), 2);
}

TEST(DateTime, IsWrittenAsTheLocaleDoes) {
    const SYSTEMTIME time{2003, 11, 0, 9, 14, 5, 6, 0};
    const SYSTEMTIME wrong{2003, 13, 0, 9, 25, 5, 6, 0};
    WCHAR text[16];
    // The C locale, which the tests run under.
    EXPECT_EQ(GetDateFormatW(LOCALE_SYSTEM_DEFAULT, DATE_SHORTDATE, &time, nullptr, text, 16), 11);
    EXPECT_EQ(std::u16string(text), u"9 Nov 2003");
    EXPECT_EQ(GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, 0, &time, nullptr, text, 16), 9);
    EXPECT_EQ(std::u16string(text), u"14:05:06");
    EXPECT_EQ(GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, TIME_NOSECONDS, &time, nullptr, text, 16), 6);
    EXPECT_EQ(std::u16string(text), u"14:05");

    EXPECT_EQ(FailureOf(GetDateFormatW(LOCALE_SYSTEM_DEFAULT, DATE_SHORTDATE, &time, nullptr, text, 10)),
              ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(std::u16string(text), u"");
    ExpectInvalid(GetDateFormatW(LOCALE_SYSTEM_DEFAULT, DATE_SHORTDATE, &wrong, nullptr, text, 16));
    ExpectInvalid(GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, 0, &wrong, nullptr, text, 16));
}

[[noreturn]] void PrintAndExit() {
    const SYSTEMTIME moments[] = {
        {2003, 11, 0, 9, 14, 5, 6, 0}, {2024, 2, 0, 29, 0, 30, 0, 0}, {2003, 1, 0, 2, 12, 0, 59, 0}};
    for (const SYSTEMTIME& moment : moments) {
        WCHAR date[32], time[32], brief[32];
        GetDateFormatW(LOCALE_SYSTEM_DEFAULT, DATE_SHORTDATE, &moment, nullptr, date, 32);
        GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, 0, &moment, nullptr, time, 32);
        GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, TIME_NOSECONDS, &moment, nullptr, brief, 32);
        for (const WCHAR* text : {date, time, brief})
            std::fprintf(stderr, "%s;", ToUtf8(text).c_str());
    }
    std::exit(0);
}

// Each in a process of its own, which starts under the locale. The host needs none of them installed.
TEST(DateTimeDeathTest, IsWrittenAsOtherLocalesDo) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const struct {
        const char* name;
        const char* texts;
    } locales[] = {
        {"en_US.UTF-8",
         "11/9/03;2:05:06 PM;2:05 PM;2/29/24;12:30:00 AM;12:30 AM;1/2/03;12:00:59 PM;12:00 PM;"},
        {"de_DE.UTF-8", "09.11.03;14:05:06;14:05;29.02.24;00:30:00;00:30;02.01.03;12:00:59;12:00;"},
        {"zh_TW.UTF-8",
         "2003/11/9;下午2:05:06;下午2:05;2024/2/29;上午12:30:00;上午12:30;2003/1/2;下午12:00:59;下午12:00;"},
    };
    const std::string before = std::getenv("LC_ALL") ? std::getenv("LC_ALL") : "";
    for (const auto& [name, texts] : locales) {
        setenv("LC_ALL", name, 1);
        EXPECT_EXIT(PrintAndExit(), testing::ExitedWithCode(0), texts);
    }
    setenv("LC_ALL", before.c_str(), 1);
}

} // namespace
