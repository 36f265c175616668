#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/RotationLines.h"

// Which of several backups keep their targets, in which order, and what is written back.
namespace {

using fi_test::backup;
using fi_test::call;
using fi_test::closingLines;
using fi_test::configurationLines;
using fi_test::invalidLine;
using fi_test::listed;
using fi_test::matchLine;
using fi_test::notAvailableLine;
using fi_test::notReservedLine;
using fi_test::openingLines;
using fi_test::reservedLine;
using fi_test::SBackup;
using fi_test::skippedLine;
using fi_test::SNode;
using fi_test::SObserved;
using fi_test::SOutcome;
using fi_test::Trace;
using fi_test::udid;
using Flags = std::vector<std::int32_t>;

class RotationOrder : public fi_test::CRotationTest {
protected:
    // A backup of encA##lun1 that holds `snap`, in a file named after its time stamp.
    SBackup holder(const std::string& timeStamp, const std::string& snap, std::int32_t flagWord = 0) const {
        return given("backup-" + timeStamp + ".xml", backup(timeStamp, {{"encA##lun1", "encA##" + snap}}),
                     flagWord);
    }
};

const Trace kThreeTargets = configurationLines(
    "encA##lun1;s1;s2;s3", {{"encA", "lun1"}, {"encA", "s1"}, {"encA", "s2"}, {"encA", "s3"}});
const std::vector<std::string> kThreeTargetsFree{"[encA:lun1](Available)", "{s1,Available}", "{s2,Available}",
                                                 "{s3,Available}"};
const Trace kTwoTargets =
    configurationLines("encA##lun1;s1;s2", {{"encA", "lun1"}, {"encA", "s1"}, {"encA", "s2"}});
const std::vector<std::string> kTwoTargetsFree{"[encA:lun1](Available)", "{s1,Available}", "{s2,Available}"};
const Trace kOneTarget = configurationLines("encA##lun1;s1", {{"encA", "lun1"}, {"encA", "s1"}});
const std::vector<std::string> kOneTargetFree{"[encA:lun1](Available)", "{s1,Available}"};

TEST_F(RotationOrder, ReleasesTheOldestOnlyAndNoMoreThanNeeded) {
    const SBackup newest = holder("3", "s3");
    const SBackup oldest = holder("1", "s1");
    const SBackup middle = holder("2", "s2");
    const SObserved observed = call("encA##lun1;s1;s2;s3", listed({newest, oldest, middle}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    EXPECT_EQ(observed.flags, (Flags{0, 2, 0}));
    EXPECT_EQ(observed.trace,
              kThreeTargets + openingLines({newest, oldest, middle}, kThreeTargetsFree) + matchLine(newest) +
                  matchLine(oldest) + matchLine(middle) + reservedLine(newest) + reservedLine(middle) +
                  reservedLine(oldest) +
                  closingLines("[encA##lun1;encA##s1]",
                               {"[encA:lun1](Used)", "{s1,Available}", "{s2,Used}", "{s3,Used}"},
                               {{oldest, 2}, {middle, 0}, {newest, 0}}));
}

TEST_F(RotationOrder, PassesOverExcludedBackupsToTheNextOldest) {
    const SBackup oldest = holder("1", "s1", 4);
    const SBackup middle = holder("2", "s2");
    // Not reached by the rotation, so it is not said to be passed over.
    const SBackup newest = holder("3", "s3", 4);
    const SObserved observed = call("encA##lun1;s1;s2;s3", listed({oldest, middle, newest}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s2]");
    EXPECT_EQ(observed.flags, (Flags{0, 2, 0}));
    EXPECT_EQ(observed.trace,
              kThreeTargets + openingLines({oldest, middle, newest}, kThreeTargetsFree) + matchLine(oldest) +
                  matchLine(middle) + matchLine(newest) + reservedLine(newest) + reservedLine(middle) +
                  reservedLine(oldest) + skippedLine(oldest) +
                  closingLines("[encA##lun1;encA##s2]",
                               {"[encA:lun1](Used)", "{s1,Used}", "{s2,Available}", "{s3,Used}"},
                               {{oldest, 0}, {middle, 2}, {newest, 0}}));
}

TEST_F(RotationOrder, ExcludedBackupThatIsInvalidIsNotSaidToBePassedOver) {
    const SBackup invalid = given("invalid.xml", backup("1", {{"encZ##gone", "encA##s1"}}), 4);
    const SBackup outdone = holder("2", "s1", 4);
    const SBackup keeper = holder("3", "s1", 4);
    const SObserved observed = call("encA##lun1;s1", listed({invalid, outdone, keeper}));
    EXPECT_EQ(observed.status, 3);
    EXPECT_EQ(observed.flags, (Flags{4, 4, 4}));
    EXPECT_EQ(observed.trace, kOneTarget + openingLines({invalid, outdone, keeper}, kOneTargetFree) +
                                  invalidLine(invalid) + matchLine(outdone) + matchLine(keeper) +
                                  reservedLine(keeper) + notReservedLine(outdone) + skippedLine(keeper) +
                                  notAvailableLine());
}

TEST_F(RotationOrder, ReleasesUntilEveryConfigurationHasAFreeTarget) {
    // The first is released although its configuration is not what keeps the selection from being
    // complete afterwards: only the order counts.
    const SBackup first = given("1.xml", backup("1", {{"encC##lun3", "encC##u1"}}));
    const SBackup second = given("2.xml", backup("2", {{"encA##lun1", "encA##s1"}}));
    const SBackup third = given("3.xml", backup("3", {{"encB##lun2", "encB##t1"}}));
    const SBackup fourth = given("4.xml", backup("4", {{"encC##lun3", "encC##u2"}}));
    const std::string selection = "[encA##lun1;encA##s1][encB##lun2;encB##t1][encC##lun3;encC##u1]";
    const SObserved observed =
        call("encA##lun1;s1&encB##lun2;t1&encC##lun3;u1;u2", listed({first, second, third, fourth}));
    EXPECT_EQ(observed.selection, selection);
    EXPECT_EQ(observed.flags, (Flags{2, 2, 2, 0}));
    EXPECT_EQ(
        observed.trace,
        configurationLines("encA##lun1;s1", {{"encA", "lun1"},
                                             {"encA", "s1"},
                                             {"encB", "lun2"},
                                             {"encB", "t1"},
                                             {"encC", "lun3"},
                                             {"encC", "u1"},
                                             {"encC", "u2"}}) +
            openingLines({first, second, third, fourth},
                         {"[encA:lun1](Available)", "{s1,Available}", "[encB:lun2](Available)",
                          "{t1,Available}", "[encC:lun3](Available)", "{u1,Available}", "{u2,Available}"}) +
            matchLine(first) + matchLine(second) + matchLine(third) + matchLine(fourth) +
            reservedLine(fourth) + reservedLine(third) + reservedLine(second) + reservedLine(first) +
            closingLines(selection,
                         {"[encA:lun1](Used)", "{s1,Available}", "[encB:lun2](Used)", "{t1,Available}",
                          "[encC:lun3](Used)", "{u1,Available}", "{u2,Used}"},
                         {{first, 2}, {second, 2}, {third, 2}, {fourth, 0}}));
}

TEST_F(RotationOrder, OneReleaseFreesAllTargetsOfTheBackup) {
    const SBackup both =
        given("both.xml", backup("1", {{"encA##lun1", "encA##s1"}, {"encB##lun2", "encB##t1"}}));
    const SBackup other = given("other.xml", backup("2", {{"encB##lun2", "encB##t2"}}));
    const SObserved observed = call("encA##lun1;s1&encB##lun2;t1;t2", listed({other, both}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1][encB##lun2;encB##t1]");
    EXPECT_EQ(observed.flags, (Flags{0, 2}));
    EXPECT_EQ(
        observed.trace,
        configurationLines(
            "encA##lun1;s1",
            {{"encA", "lun1"}, {"encA", "s1"}, {"encB", "lun2"}, {"encB", "t1"}, {"encB", "t2"}}) +
            openingLines({other, both}, {"[encA:lun1](Available)", "{s1,Available}", "[encB:lun2](Available)",
                                         "{t1,Available}", "{t2,Available}"}) +
            matchLine(other) + matchLine(both) + reservedLine(other) + reservedLine(both) +
            closingLines(
                "[encA##lun1;encA##s1][encB##lun2;encB##t1]",
                {"[encA:lun1](Used)", "{s1,Available}", "[encB:lun2](Used)", "{t1,Available}", "{t2,Used}"},
                {{both, 2}, {other, 0}}));
}

TEST_F(RotationOrder, BackupThatNamesNoDeviceIsRotatedWithoutFreeingAnything) {
    const SBackup empty = given("empty.xml", backup("0", {}));
    const SBackup a = holder("1", "s1");
    const SObserved observed = call("encA##lun1;s1", listed({empty, a}));
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1]");
    EXPECT_EQ(observed.flags, (Flags{2, 2}));
    EXPECT_EQ(observed.trace,
              kOneTarget + openingLines({empty, a}, kOneTargetFree) + matchLine(empty) + matchLine(a) +
                  reservedLine(a) + reservedLine(empty) +
                  closingLines("[encA##lun1;encA##s1]", {"[encA:lun1](Used)", "{s1,Available}"},
                               {{empty, 2}, {a, 2}}));
}

TEST_F(RotationOrder, TimeStampsAreOrderedAsText) {
    const SBackup lesser = holder("999", "s1");
    const SBackup first = holder("1000", "s2");
    const SObserved observed = call("encA##lun1;s1;s2", listed({lesser, first}));
    EXPECT_EQ(observed.flags, (Flags{0, 2}));
    EXPECT_EQ(observed.trace,
              kTwoTargets + openingLines({lesser, first}, kTwoTargetsFree) + matchLine(lesser) +
                  matchLine(first) + reservedLine(lesser) + reservedLine(first) +
                  closingLines("[encA##lun1;encA##s2]", {"[encA:lun1](Used)", "{s1,Used}", "{s2,Available}"},
                               {{first, 2}, {lesser, 0}}));
}

TEST_F(RotationOrder, BackupWithoutATimeStampIsTheOldest) {
    const SBackup with = holder("1", "s1");
    const SBackup without =
        given("without.xml", SNode{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##s2")}}, {}});
    const SObserved observed = call("encA##lun1;s1;s2", listed({with, without}));
    EXPECT_EQ(observed.flags, (Flags{0, 2}));
    EXPECT_EQ(observed.trace,
              kTwoTargets + openingLines({with, without}, kTwoTargetsFree) + matchLine(with) +
                  matchLine(without) + reservedLine(with) + reservedLine(without) +
                  closingLines("[encA##lun1;encA##s2]", {"[encA:lun1](Used)", "{s1,Used}", "{s2,Available}"},
                               {{without, 2}, {with, 0}}));
}

// Which of the two goes first is open, in both passes; what becomes of them is not.
TEST_F(RotationOrder, EqualTimeStampsEndAlikeWhicheverGoesFirst) {
    const SBackup a = given("a.xml", backup("1", {{"encA##lun1", "encA##s1"}}));
    const SBackup b = given("b.xml", backup("1", {{"encB##lun2", "encB##t1"}}));
    const SObserved observed = call("encA##lun1;s1&encB##lun2;t1", listed({a, b}));
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(observed.selection, "[encA##lun1;encA##s1][encB##lun2;encB##t1]");
    EXPECT_EQ(observed.flags, (Flags{2, 2}));
    EXPECT_THAT(
        observed.trace,
        testing::UnorderedElementsAreArray(
            configurationLines("encA##lun1;s1",
                               {{"encA", "lun1"}, {"encA", "s1"}, {"encB", "lun2"}, {"encB", "t1"}}) +
            openingLines({a, b}, {"[encA:lun1](Available)", "{s1,Available}", "[encB:lun2](Available)",
                                  "{t1,Available}"}) +
            matchLine(a) + matchLine(b) + reservedLine(a) + reservedLine(b) +
            closingLines("[encA##lun1;encA##s1][encB##lun2;encB##t1]",
                         {"[encA:lun1](Used)", "{s1,Available}", "[encB:lun2](Used)", "{t1,Available}"},
                         {{a, 2}, {b, 2}})));
}

TEST_F(RotationOrder, ManyBackupsAreClaimedAndRotatedInOrder) {
    constexpr int kCount = 60;
    std::vector<SBackup> byAge;
    std::string configuration = "encA##lun1";
    std::vector<std::pair<std::string, std::string>> targets{{"encA", "lun1"}};
    std::vector<std::string> free{"[encA:lun1](Available)"};
    std::vector<std::string> held{"[encA:lun1](Used)"};
    for (int i = 0; i < kCount; ++i) {
        const std::string snap = "s" + std::to_string(i);
        byAge.push_back(holder(std::to_string(100 + i), snap));
        configuration += ";" + snap;
        targets.emplace_back("encA", snap);
        free.push_back("{" + snap + ",Available}");
        held.push_back("{" + snap + (i == 0 ? ",Available}" : ",Used}"));
    }

    std::vector<SBackup> given;
    Flags states;
    Trace matches;
    Trace reserves;
    std::vector<SOutcome> outcomes;
    for (int i = 0; i < kCount; ++i) {
        // Every one once, out of order.
        const int age = i * 37 % kCount;
        given.push_back(byAge[static_cast<std::size_t>(age)]);
        states.push_back(age == 0 ? 2 : 0);
        matches = matches + matchLine(given.back());
        reserves = reservedLine(byAge[static_cast<std::size_t>(i)]) + reserves;
        outcomes.push_back({byAge[static_cast<std::size_t>(i)], i == 0 ? 2 : 0});
    }

    const SObserved observed = call(configuration, listed(given));
    EXPECT_EQ(observed.flags, states);
    EXPECT_EQ(observed.trace, configurationLines(configuration, targets) + openingLines(given, free) +
                                  matches + reserves + closingLines("[encA##lun1;encA##s0]", held, outcomes));
}

}  // namespace
