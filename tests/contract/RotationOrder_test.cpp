#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

// Which of many backups keep their targets, in which order, and what is written back.
namespace {

using fi_test::backup;
using fi_test::call;
using fi_test::SListed;
using fi_test::SObserved;
using fi_test::toXml;
using Flags = std::vector<std::int32_t>;

class RotationOrder : public fi_test::CContractTest {
protected:
    // A backup of encA##lun1 that holds `snap`, in a file named after its time stamp.
    SListed holder(const std::string& timeStamp, const std::string& snap,
                   std::int32_t flagWord = 0) const {
        const std::string name = "backup-" + timeStamp + ".xml";
        return {write(name, toXml(backup(timeStamp, {{"encA##lun1", "encA##" + snap}}))), flagWord};
    }
};

// The texts of the lines that start with `start`, without it.
std::vector<std::string> textsBehind(const SObserved& observed, const std::string& start) {
    std::vector<std::string> texts;
    for (const fi_test::TraceLine& line : observed.trace) {
        if (line.text.compare(0, start.size(), start) == 0) {
            texts.push_back(line.text.substr(start.size()));
        }
    }
    return texts;
}

TEST_F(RotationOrder, ReleasesTheOldestOnlyAndNoMoreThanNeeded) {
    const SObserved observed =
        call("encA##lun1;s1;s2;s3", {holder("3", "s3"), holder("1", "s1"), holder("2", "s2")});
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    EXPECT_EQ(observed.flags, (Flags{0, 2, 0}));
}

TEST_F(RotationOrder, PassesOverExcludedBackupsToTheNextOldest) {
    const SObserved observed =
        call("encA##lun1;s1;s2;s3", {holder("1", "s1", 4), holder("2", "s2"), holder("3", "s3")});
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s2]");
    EXPECT_EQ(observed.flags, (Flags{0, 2, 0}));
}

TEST_F(RotationOrder, ReleasesUntilEveryConfigurationHasAFreeTarget) {
    const auto both = [this](const std::string& timeStamp, const std::string& first,
                             const std::string& further) {
        return SListed{write(timeStamp, toXml(backup(timeStamp, {{first, further}}))), 0};
    };
    const SObserved observed =
        call("encA##lun1;s1&encB##lun2;t1&encC##lun3;u1;u2",
             {both("1", "encC##lun3", "encC##u1"), both("2", "encA##lun1", "encA##s1"),
              both("3", "encB##lun2", "encB##t1"), both("4", "encC##lun3", "encC##u2")});
    // 1 is released although its configuration is not what keeps the selection from being complete
    // afterwards: only the order counts.
    EXPECT_EQ(observed.selection,
              "[encA##lun1;encA##s1][encB##lun2;encB##t1][encC##lun3;encC##u1]");
    EXPECT_EQ(observed.flags, (Flags{2, 2, 2, 0}));
}

TEST_F(RotationOrder, ClaimsNewestFirstAndReportsOldestFirst) {
    const std::vector<SListed> backups{holder("2", "s2"), holder("3", "s3"), holder("1", "s1")};
    const SObserved observed = call("encA##lun1;s1;s2;s3;s4", backups);
    EXPECT_EQ(textsBehind(observed, "fi_process_backups : [RESOURCES MATCH] "),
              (std::vector<std::string>{"[" + backups[0].file + "]", "[" + backups[1].file + "]",
                                        "[" + backups[2].file + "]"}));
    EXPECT_EQ(textsBehind(observed, "fi_process_backups : [RESERVE GOOD] "),
              (std::vector<std::string>{backups[1].file + " - T: 3", backups[0].file + " - T: 2",
                                        backups[2].file + " - T: 1"}));
    EXPECT_EQ(textsBehind(observed, "fi_process_backups : parsed "),
              (std::vector<std::string>{
                  "[" + backups[0].file + "]", "[" + backups[1].file + "]",
                  "[" + backups[2].file + "]", "[" + backups[2].file + "] state=[0]",
                  "[" + backups[0].file + "] state=[0]", "[" + backups[1].file + "] state=[0]"}));
}

TEST_F(RotationOrder, TimeStampsAreOrderedAsText) {
    const SObserved observed =
        call("encA##lun1;s1;s2", {holder("999", "s1"), holder("1000", "s2")});
    EXPECT_EQ(observed.flags, (Flags{0, 2}));
}

TEST_F(RotationOrder, BackupWithoutATimeStampIsTheOldest) {
    const SListed without{write("without.xml",
                                "<Node><objid>UDID##v##m##encA##lun1</objid>"
                                "<altobjid>UDID##v##m##encA##s2</altobjid></Node>"),
                          0};
    const SObserved observed = call("encA##lun1;s1;s2", {holder("1", "s1"), without});
    EXPECT_EQ(observed.flags, (Flags{0, 2}));
}

TEST_F(RotationOrder, EqualTimeStampsEndAlikeWhicheverComesFirst) {
    const SListed a{write("a.xml", toXml(backup("1", {{"encA##lun1", "encA##s1"}}))), 0};
    const SListed b{write("b.xml", toXml(backup("1", {{"encB##lun2", "encB##t1"}}))), 0};
    const SObserved observed = call("encA##lun1;s1&encB##lun2;t1", {a, b});
    EXPECT_EQ(observed.flags, (Flags{2, 2}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1][encB##lun2;encB##t1]");
}

TEST_F(RotationOrder, NameListedTwiceIsTwoBackupsWithOneFlagWordAndOneState) {
    SListed twice = holder("1", "s1");
    twice.flagWord = 4;
    SListed last = twice;
    last.flagWord = 8;
    // The second of the two claims in vain; the last flag word does not exclude. Of the two states one
    // is rotated and one invalid, and both entries get that of the first in the final order.
    const SObserved observed = call("encA##lun1;s1;s2", {twice, last, holder("2", "s2")});
    ASSERT_EQ(observed.flags.size(), 3U);
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.flags[0], observed.flags[1]);
    EXPECT_EQ(observed.flags[2], 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    const auto parsed =
        textsBehind(observed, "fi_process_backups : parsed [" + twice.file + "] state=");
    ASSERT_EQ(parsed.size(), 2U);
    EXPECT_EQ(parsed[0], "[" + std::to_string(observed.flags[0]) + "]");
}

TEST_F(RotationOrder, LastFlagWordOfANameListedTwiceCounts) {
    const SListed first = holder("1", "s1", 0);
    SListed second = first;
    second.flagWord = 4;
    EXPECT_EQ(call("encA##lun1;s1", {first, second}).status, 3);
    EXPECT_EQ(call("encA##lun1;s1", {second, first}).status, 0);
}

TEST_F(RotationOrder, NamesCountByteForByte) {
    const SListed plain = holder("1", "s1");
    const SListed detour{path("./backup-1.xml"), 9};
    const SObserved observed = call("encA##lun1;s1;s2", {plain, detour});
    EXPECT_EQ(textsBehind(observed, "fi_process_backups : parsed [" + detour.file + "]").size(),
              2U);
    // One of the two claims, the other finds the target used.
    EXPECT_EQ(observed.flags[0] + observed.flags[1], 1);
}

TEST_F(RotationOrder, InvalidBackupIsNeverReleasedWhateverItsAge) {
    const SListed invalid{
        write("invalid.xml",
              toXml(backup("1", {{"encA##lun1", "encA##s1"}, {"encA##lun1##x", "encA##s1"}}))),
        0};
    const SObserved observed = call("encA##lun1;s1", {invalid, holder("2", "s1")});
    EXPECT_EQ(observed.flags, (Flags{1, 2}));
}

TEST_F(RotationOrder, ManyBackupsAreRotatedInOrder) {
    std::vector<SListed> backups;
    std::string configuration = "encA##lun1";
    for (int i = 100; i < 160; ++i) {
        backups.push_back(holder(std::to_string(i), "s" + std::to_string(i)));
        configuration += ";s" + std::to_string(i);
    }
    const SObserved observed = call(configuration, backups);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s100]");
    Flags expected(60, 0);
    expected[0] = 2;
    EXPECT_EQ(observed.flags, expected);
}

}  // namespace
