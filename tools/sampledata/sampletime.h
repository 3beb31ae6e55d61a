// Times and chances of the sample data.
#pragma once

#include <cstddef>

#include "platform/datetime.h"

constexpr WORD kFirstSampleYear = 2003;

// A moment of a day; hours, minutes and days may run over, so that tables can be stepped through.
FILETIME Moment(WORD year, WORD month, int day, int hour = 0, int minute = 0);
// A moment some days after the day on which the device is made, or before it.
FILETIME MomentFromToday(int days, int hour = 0, int minute = 0);
FILETIME LaterBy(const FILETIME& time, int minutes);

// Numbers that look like chance and are the same on every machine.
class Chance {
public:
    explicit Chance(std::uint32_t seed) : state(seed) {}

    // 0 to bound - 1.
    std::uint32_t Below(std::uint32_t bound);
    int Between(int low, int high) {
        return low + static_cast<int>(Below(static_cast<std::uint32_t>(high - low + 1)));
    }
    bool OneIn(std::uint32_t count) { return Below(count) == 0; }
    template <typename T, std::size_t N>
    const T& Pick(const T (&table)[N]) {
        return table[Below(N)];
    }

private:
    std::uint64_t state;
};
