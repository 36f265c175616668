#include "cli/base/calendar.h"

#include <gtest/gtest.h>

namespace {

using fi_rotate::kSecondsPerDay;
using fi_rotate::parseDuration;
using fi_rotate::parseTime;
using fi_rotate::parseTimeStamp;
using fi_rotate::parseWeekday;
using fi_rotate::toShownDays;
using fi_rotate::toShownTime;
using fi_rotate::toTimeStamp;

TEST(FiRotateCalendar, ReadsDatesWithAndWithoutATime) {
    EXPECT_EQ(parseTime("1970-01-01"), 0);
    EXPECT_EQ(parseTime("1970-01-02T00:01"), kSecondsPerDay + 60);
    EXPECT_EQ(parseTime("1970-01-02T00:01:05"), kSecondsPerDay + 65);
    EXPECT_EQ(parseTime("1969-12-31T23:59:59"), -1);
    EXPECT_TRUE(parseTime("2028-02-29").has_value());
}

TEST(FiRotateCalendar, RefusesWhatIsNoTime) {
    for (const char* text :
         {"", "2026", "2026-13-01", "2026-02-29", "2026-00-01", "2026-10-01T24:00", "2026-10-01 01:30",
          "2026-10-01T01:60", "2026-10-01T", "26-10-01", "2026-10-01x", "+026-10-01"}) {
        EXPECT_FALSE(parseTime(text).has_value()) << text;
    }
    for (const char* text :
         {"2026100101300", "202610010130000", "20261301013000", "20260001013000", "20260229013000",
          "20261000013000", "20261001240000", "20261001016000", "20261001013061"}) {
        EXPECT_FALSE(parseTimeStamp(text).has_value()) << text;
    }
}

TEST(FiRotateCalendar, TimeStampsHaveOneWidth) {
    EXPECT_EQ(toTimeStamp(0), "19700101000000");
    EXPECT_EQ(toTimeStamp(fi_rotate::lastTime()), "99991231235959");
    EXPECT_EQ(toTimeStamp(*parseTime("0001-02-03")), "00010203000000");
    EXPECT_EQ(parseTimeStamp("20261001013007"), parseTime("2026-10-01T01:30:07"));
}

TEST(FiRotateCalendar, ReadsTheDayOfALeapYearAndALeapSecond) {
    EXPECT_EQ(parseTimeStamp("20280229000000"), parseTime("2028-02-29"));
    EXPECT_EQ(parseTimeStamp("20161231235960"), parseTime("2016-12-31T23:59:59"));
}

TEST(FiRotateCalendar, ReadsDurationsWithAUnit) {
    EXPECT_EQ(parseDuration("90s"), 90);
    EXPECT_EQ(parseDuration("15m"), 900);
    EXPECT_EQ(parseDuration("24h"), kSecondsPerDay);
    EXPECT_EQ(parseDuration("2d"), 2 * kSecondsPerDay);
    EXPECT_EQ(parseDuration("1w"), 7 * kSecondsPerDay);
    for (const char* text :
         {"", "h", "24", "0h", "-1h", "1.5h", "24 h", "24hh", "24H", "9223372036854775807w"}) {
        EXPECT_FALSE(parseDuration(text).has_value()) << text;
    }
}

TEST(FiRotateCalendar, ReadsDaysOfTheWeekByNameOrItsStart) {
    EXPECT_EQ(parseWeekday("sunday"), 0);
    EXPECT_EQ(parseWeekday("Sat"), 6);
    EXPECT_EQ(parseWeekday("WED"), 3);
    EXPECT_FALSE(parseWeekday("su").has_value());
    EXPECT_FALSE(parseWeekday("7").has_value());
    // 1970-01-01 was a Thursday.
    EXPECT_EQ(fi_rotate::weekdayOf(0), 4);
}

TEST(FiRotateCalendar, ShowsTimesAndDays) {
    EXPECT_EQ(toShownTime(0), "1970-01-01 00:00");
    EXPECT_EQ(toShownTime(61), "1970-01-01 00:01:01");
    EXPECT_EQ(toShownDays(10 * kSecondsPerDay), "10 d");
    EXPECT_EQ(toShownDays(kSecondsPerDay / 2), "0.5 d");
    EXPECT_EQ(toShownDays(3600), "0.04 d");
    EXPECT_EQ(toShownDays(0), "0 d");
}

}  // namespace
