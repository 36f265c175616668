#include "cli/picture/time_axis.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/base/calendar.h"

namespace {

using testing::ElementsAre;

std::vector<std::string> labels(const char* from, const char* to, std::size_t most) {
    std::vector<std::string> result;
    const std::int64_t first = fi_rotate::parseTime(from).value();
    const std::int64_t last = fi_rotate::parseTime(to).value();
    for (const fi_rotate::STick& tick : fi_rotate::timeTicks(first, last, most)) {
        EXPECT_GE(tick.at, static_cast<double>(first));
        EXPECT_LE(tick.at, static_cast<double>(last));
        result.push_back(tick.label);
    }
    return result;
}

TEST(FiRotateTimeAxis, TakesTheSmallestRoundStepThatHasRoom) {
    EXPECT_THAT(labels("2026-10-01T00:10", "2026-10-01T04:10", 5),
                ElementsAre("2026-10-01 01:00", "2026-10-01 02:00", "2026-10-01 03:00", "2026-10-01 04:00"));
    EXPECT_THAT(labels("2026-10-01", "2026-10-03", 3), ElementsAre("2026-10-01", "2026-10-02", "2026-10-03"));
    EXPECT_THAT(labels("2026-10-01T12:00", "2026-10-03", 3), ElementsAre("2026-10-02", "2026-10-03"));
}

TEST(FiRotateTimeAxis, WeeksBeginOnMondays) {
    EXPECT_THAT(labels("2026-10-01", "2026-10-26", 4),
                ElementsAre("2026-10-05", "2026-10-12", "2026-10-19", "2026-10-26"));
}

TEST(FiRotateTimeAxis, MonthsAndYearsAreThoseOfTheCalendar) {
    EXPECT_THAT(labels("2026-10-01", "2027-02-10", 6),
                ElementsAre("2026-10", "2026-11", "2026-12", "2027-01", "2027-02"));
    EXPECT_THAT(labels("2026-10-01", "2031-10-01", 7), ElementsAre("2027", "2028", "2029", "2030", "2031"));
    EXPECT_THAT(labels("2026-10-01", "2126-10-01", 6), ElementsAre("2040", "2060", "2080", "2100", "2120"));
    EXPECT_THAT(labels("9998-12-30", "9999-12-31", 3), ElementsAre("9999-01", "9999-07"));
}

TEST(FiRotateTimeAxis, HasATickForATimeAlone) {
    EXPECT_THAT(labels("2026-10-01", "2026-10-01", 5), ElementsAre("2026-10-01 00:00"));
}

}  // namespace
