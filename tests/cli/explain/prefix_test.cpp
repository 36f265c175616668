#include "cli/explain/prefix.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using fi_rotate::hasTime;
using fi_rotate::prefixOf;
using testing::ElementsAre;
using testing::IsEmpty;

struct STimeRow {
    const char* prefix;
    const char* time;
};

class FiRotateLogTime : public testing::TestWithParam<STimeRow> {};

TEST_P(FiRotateLogTime, IsShownAsWrittenAndIsNoWord) {
    const auto prefix = prefixOf(GetParam().prefix);
    EXPECT_EQ(prefix.time, GetParam().time);
    EXPECT_TRUE(hasTime(prefix.shape));
    EXPECT_THAT(prefix.words, ElementsAre("host", "backupd", "17"));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, FiRotateLogTime,
    testing::Values(STimeRow{"Nov 22 01:30:00 host backupd[17]: ", "Nov 22 01:30:00"},
                    STimeRow{"Nov  2 01:30:00.123456 host backupd[17]: ", "Nov  2 01:30:00.123456"},
                    STimeRow{"2026-10-10T01:30:00+0200 host backupd[17]: ", "2026-10-10T01:30:00+0200"},
                    STimeRow{"2026-10-10T01:30:00.123456+02:00 host backupd[17]: ",
                             "2026-10-10T01:30:00.123456+02:00"},
                    STimeRow{"2026-10-10T01:30:00.123Z host backupd[17]: ", "2026-10-10T01:30:00.123Z"},
                    STimeRow{"2026-10-10 01:30:00,123 host backupd[17] - ", "2026-10-10 01:30:00,123"},
                    STimeRow{"[2026/10/10 01:30:00] host backupd[17] ", "2026/10/10 01:30:00"},
                    STimeRow{"[10/Oct/2026:01:30:00 +0200] host backupd[17] ", "10/Oct/2026:01:30:00 +0200"},
                    STimeRow{"Sat Oct 10 01:30:00 2026 host backupd[17]: ", "Sat Oct 10 01:30:00 2026"},
                    STimeRow{"20261010T013000 host backupd[17]: ", "20261010T013000"},
                    STimeRow{"[  812.123456] host backupd[17]: ", "812.123456"},
                    STimeRow{"1791595800.123 host backupd[17]: ", "1791595800.123"},
                    STimeRow{"2026-1-1 7:0:9 host backupd[17]: ", "2026-1-1 7:0:9"},
                    STimeRow{"host backupd[17] 01:30 ", "01:30"}));

TEST(FiRotateLogPrefix, HasNoTimeWithoutOne) {
    for (const char* const text :
         {"host backupd[17]: ", "10.0.0.117 ", "00:11:22:33:44:ab ", "1.2.345 ", ""}) {
        EXPECT_EQ(prefixOf(text).time, "") << text;
        EXPECT_FALSE(hasTime(prefixOf(text).shape)) << text;
    }
}

TEST(FiRotateLogPrefix, LeavesLevelsOut) {
    const auto plain = prefixOf("host backupd[17]: ");
    for (const char* const text :
         {"host backupd[17]: INFO ", "host backupd[17]: ERROR: ", "host backupd[17]: [warning] ",
          "host backupd[17]: <Debug>: ", "host backupd[17]: [INFO ] ", "INFO  host backupd[17]: "}) {
        const auto prefix = prefixOf(text);
        EXPECT_EQ(prefix.shape, plain.shape) << text;
        EXPECT_EQ(prefix.words, plain.words) << text;
        EXPECT_EQ(prefix.blanks, 1U) << text;
    }
}

TEST(FiRotateLogPrefix, KnowsWordsButNotTheirLengths) {
    EXPECT_EQ(prefixOf("[  17][t:0x7f] ").shape, prefixOf("[4711][t:0xffee12] ").shape);
    EXPECT_NE(prefixOf("a b ").shape, prefixOf("ab ").shape);
    EXPECT_NE(prefixOf("a: ").shape, prefixOf("a; ").shape);
}

TEST(FiRotateLogPrefix, CountsTheBlanksAtItsEnd) {
    EXPECT_EQ(prefixOf("INFO   ").blanks, 3U);
    EXPECT_EQ(prefixOf("a  b").blanks, 0U);
}

TEST(FiRotateLogPrefix, TakesNothingInItForItsOwnMarks) {
    const auto prefix = prefixOf("\1\2 a");
    EXPECT_FALSE(hasTime(prefix.shape));
    EXPECT_THAT(prefix.words, ElementsAre("a"));
    EXPECT_NE(prefix.shape, prefixOf("01:30 b a").shape);
    EXPECT_THAT(prefixOf("").words, IsEmpty());
}

TEST(FiRotateLogPrefix, TellsWhichWordsStandWhereSyslogHasTheProcess) {
    EXPECT_THAT(fi_rotate::areProcessesIn(prefixOf("Nov 22 01:30:00 host backupd[17]: ").shape),
                ElementsAre(false, false, true));
    EXPECT_THAT(fi_rotate::areProcessesIn(prefixOf("[17] host: [18] backupd(19)[ ").shape),
                testing::AllOf(testing::SizeIs(5), testing::Each(false)));
}

}  // namespace
