#include "cli/explain/log_time.h"

#include <gtest/gtest.h>

namespace {

using fi_rotate::isMuchLater;
using fi_rotate::secondsLength;
using fi_rotate::timeLength;

struct SPauseRow {
    const char* before;
    // Two hours later, and a little more than that.
    const char* near;
    const char* far;
};

class FiRotateLogPause : public testing::TestWithParam<SPauseRow> {};

TEST_P(FiRotateLogPause, OfMoreThanTwoHoursIsMuchLater) {
    const SPauseRow& row = GetParam();
    EXPECT_FALSE(isMuchLater(row.near, row.before));
    EXPECT_TRUE(isMuchLater(row.far, row.before));
    EXPECT_FALSE(isMuchLater(row.before, row.far));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, FiRotateLogPause,
    testing::Values(
        SPauseRow{"Nov 22 22:30:00", "Nov 23 00:30:00", "Nov 23 00:30:01"},
        SPauseRow{"Feb  9 01:30:00.5", "Feb  9 03:30:00.9", "Feb 10 01:30:00.5"},
        SPauseRow{"Sat Oct 10 01:30:00 2026", "Sat Oct 10 03:30:00 2026", "Sun Oct 11 01:30:00 2026"},
        SPauseRow{"Sat 2026-10-10 01:30:00", "Sat 2026-10-10 03:30:00", "Sun 2026-10-11 01:30:00"},
        SPauseRow{"2026-12-31T23:30:00.123Z", "2027-01-01T01:30:00.123Z", "2027-01-01T01:30:01.000Z"},
        SPauseRow{"2026-10-10 01:30:00,123", "2026-10-10 03:30:00,123", "2026-11-10 01:30:00,123"},
        SPauseRow{"2026-10-10T01:30", "2026-10-10T03:30", "2026-10-10T03:31"},
        SPauseRow{"2026/10/10 01:30:00", "2026/10/10 03:30:00", "2026/10/11 01:30:00"},
        SPauseRow{"10.9.2026 01:30:00", "10.9.2026 03:30:00", "9.10.2026 01:30:00"},
        SPauseRow{"10/Oct/2026:01:30:00 +0200", "10/Oct/2026:03:30:00 +0200", "11/Oct/2026:01:30:00 +0200"},
        SPauseRow{"Oct 10 2026 01:30:00", "Oct 10 2026 03:30:00", "Oct 10 2027 01:30:00"},
        SPauseRow{"20261010T013000", "20261010T033000", "20261011T013000"},
        SPauseRow{"1791595800", "1791603000", "1791603001"},
        SPauseRow{"1791595800123", "1791603000999", "1791603001000"},
        SPauseRow{"812.123456", "8012.123456", "8013.000000"}));

TEST(FiRotateLogTimes, WithoutADateOrATimeOfDayAreNeverMuchLater) {
    EXPECT_FALSE(isMuchLater("23:30:00", "01:30:00"));
    EXPECT_FALSE(isMuchLater("23:30", "01:30"));
    EXPECT_FALSE(isMuchLater("2026-10-11", "2026-10-10"));
    EXPECT_FALSE(isMuchLater("Nov 22 22:30:00", ""));
    EXPECT_FALSE(isMuchLater("", "Nov 22 22:30:00"));
    EXPECT_FALSE(isMuchLater("Xyz 22 22:30:00", "Nov 20 22:30:00"));
}

TEST(FiRotateLogTimes, EndWhereAnAddressOrAWordDoesNot) {
    EXPECT_EQ(timeLength("01:30:00 host"), 8U);
    EXPECT_EQ(timeLength("00:11:22:33:44:ab"), 0U);
    EXPECT_EQ(timeLength("2026-10-10x"), 0U);
    EXPECT_EQ(timeLength("7:30 host"), 4U);
    EXPECT_EQ(timeLength("Nov  2  7:05:09 host"), 15U);
    // Of "thread-1: 4 Entering" and "thread-17:4 Entering".
    EXPECT_EQ(timeLength("1: 4 Entering"), 0U);
    EXPECT_EQ(timeLength("17:4 Entering"), 0U);
    EXPECT_EQ(secondsLength("812.123456] "), 10U);
    EXPECT_EQ(secondsLength("1.2 "), 0U);
}

}  // namespace
