#include "cli/picture/time_axis.h"

#include <array>
#include <string>

#include <fmt/format.h>

#include "cli/base/calendar.h"

namespace fi_rotate {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kWeek = 7 * kSecondsPerDay;
// 1970-01-05.
constexpr std::int64_t kFirstMonday = 4 * kSecondsPerDay;

std::int64_t roundedUp(std::int64_t value, std::int64_t step) {
    const std::int64_t rest = value % step;
    return value - rest + (rest > 0 ? step : 0);
}

// Times that are `step` seconds apart, weeks from Mondays on.
std::vector<STick> evenTicks(std::int64_t from, std::int64_t to, std::int64_t step) {
    const std::int64_t offset = step % kWeek == 0 ? kFirstMonday : 0;
    constexpr std::size_t kDateLength = 10;
    std::vector<STick> ticks;
    for (std::int64_t time = roundedUp(from - offset, step) + offset; time <= to; time += step) {
        std::string label = toShownTime(time);
        if (step % kSecondsPerDay == 0) {
            label.resize(kDateLength);
        }
        ticks.push_back({static_cast<double>(time), label});
    }
    return ticks;
}

std::vector<STick> monthTicks(std::int64_t from, std::int64_t to, int step) {
    constexpr int kMonths = 12;
    constexpr int kMonthDigits = 100;
    // YYYYMM as a number.
    const int first = std::stoi(toTimeStamp(from).substr(0, 6));
    std::vector<STick> ticks;
    for (int month = (first / kMonthDigits * kMonths + first % kMonthDigits - 1) / step * step;;
         month += step) {
        const int year = month / kMonths;
        const auto time = parseTimeStamp(fmt::format("{:04}{:02}01000000", year, month % kMonths + 1));
        if (!time.has_value() || *time > to) {
            return ticks;
        }
        if (*time >= from) {
            ticks.push_back({static_cast<double>(*time),
                             step % kMonths == 0 ? fmt::format("{:04}", year)
                                                 : fmt::format("{:04}-{:02}", year, month % kMonths + 1)});
        }
    }
}

}  // namespace

std::vector<STick> timeTicks(std::int64_t from, std::int64_t to, std::size_t most) {
    const auto room = static_cast<std::int64_t>(most);
    constexpr std::array<std::int64_t, 14> kSteps = {
        1,         5,         15,         kMinute,        5 * kMinute,        15 * kMinute, kHour,
        3 * kHour, 6 * kHour, 12 * kHour, kSecondsPerDay, 2 * kSecondsPerDay, kWeek,        2 * kWeek};
    for (const std::int64_t step : kSteps) {
        if ((to - from) / step + 1 <= room) {
            return evenTicks(from, to, step);
        }
    }
    constexpr std::array<int, 9> kMonthSteps = {1, 2, 3, 6, 12, 24, 60, 120, 240};
    constexpr std::int64_t kShortestMonth = 28 * kSecondsPerDay;
    for (const int step : kMonthSteps) {
        if ((to - from) / (step * kShortestMonth) + 1 <= room) {
            return monthTicks(from, to, step);
        }
    }
    constexpr int kThousandYears = 12000;
    return monthTicks(from, to, kThousandYears);
}

}  // namespace fi_rotate
