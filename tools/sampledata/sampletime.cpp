#include "tools/sampledata/sampletime.h"

namespace {

constexpr std::int64_t kStepsPerMinute = 60LL * 10'000'000;
constexpr int kMinutesPerDay = 24 * 60;

FILETIME StartOf(const SYSTEMTIME& day) {
    const SYSTEMTIME midnight{day.wYear, day.wMonth, 0, day.wDay, 0, 0, 0, 0};
    FILETIME time = {};
    SystemTimeToFileTime(&midnight, &time);
    return time;
}

} // namespace

FILETIME LaterBy(const FILETIME& time, int minutes) {
    const std::uint64_t steps = static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    const std::uint64_t later = steps + static_cast<std::uint64_t>(minutes * kStepsPerMinute);
    return {static_cast<DWORD>(later), static_cast<DWORD>(later >> 32)};
}

FILETIME Moment(WORD year, WORD month, int day, int hour, int minute) {
    const SYSTEMTIME first{year, month, 0, 1, 0, 0, 0, 0};
    return LaterBy(StartOf(first), (day - 1) * kMinutesPerDay + hour * 60 + minute);
}

FILETIME MomentFromToday(int days, int hour, int minute) {
    SYSTEMTIME today = {};
    GetLocalTime(&today);
    return LaterBy(StartOf(today), days * kMinutesPerDay + hour * 60 + minute);
}

std::uint32_t Chance::Below(std::uint32_t bound) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>((state >> 33) % bound);
}
