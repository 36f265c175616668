#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/Decision.h"

// Which of several backups keep their targets, in which order, and what is written back.
namespace fi_test {
namespace {

class CRotationOrder : public CRotationTest {
protected:
    // A backup of encA##lun1 that holds `snap`, in a file named after its time stamp.
    SBackup holder(const std::string& timeStamp, const std::string& snap, std::int32_t flagWord = 0) const {
        return given("backup-" + timeStamp + ".xml", backup(timeStamp, {{"encA##lun1", "encA##" + snap}}),
                     flagWord);
    }
};

TEST_F(CRotationOrder, ReleasesTheOldestOnlyAndNoMoreThanNeeded) {
    const SBackup newest = holder("3", "s3");
    const SBackup oldest = holder("1", "s1");
    const SBackup middle = holder("2", "s2");
    EXPECT_EQ(decided("encA##lun1;s1;s2;s3", {newest, oldest, middle}),
              selected("[encA##lun1;encA##s1]", {0, 2, 0},
                       matched({newest, oldest, middle}) + claimed({newest, middle, oldest}),
                       {"[encA:lun1](Used)", "{s1,Available}", "{s2,Used}", "{s3,Used}"},
                       {{oldest, 2}, {middle, 0}, {newest, 0}}));
}

TEST_F(CRotationOrder, PassesOverExcludedBackupsToTheNextOldest) {
    const SBackup oldest = holder("1", "s1", 4);
    const SBackup middle = holder("2", "s2");
    // The rotation stops before it, so no line says that it was skipped.
    const SBackup newest = holder("3", "s3", 4);
    EXPECT_EQ(
        decided("encA##lun1;s1;s2;s3", {oldest, middle, newest}),
        selected("[encA##lun1;encA##s2]", {0, 2, 0},
                 matched({oldest, middle, newest}) + claimed({newest, middle, oldest}) + skipped({oldest}),
                 {"[encA:lun1](Used)", "{s1,Used}", "{s2,Available}", "{s3,Used}"},
                 {{oldest, 0}, {middle, 2}, {newest, 0}}));
}

TEST_F(CRotationOrder, ExcludedBackupThatIsInvalidIsNotTracedAsSkipped) {
    const SBackup unmatched = given("invalid.xml", backup("1", {{"encZ##gone", "encA##s1"}}), 4);
    const SBackup outdone = holder("2", "s1", 4);
    const SBackup keeper = holder("3", "s1", 4);
    EXPECT_EQ(decided("encA##lun1;s1", {unmatched, outdone, keeper}),
              notSelected({4, 4, 4}, invalid({unmatched}) + matched({outdone, keeper}) + claimed({keeper}) +
                                         notClaimed({outdone}) + skipped({keeper})));
}

TEST_F(CRotationOrder, ReleasesUntilEveryConfigurationHasAFreeTarget) {
    // Backups are released in the order of their age, whichever configurations have no free target.
    const SBackup first = given("1.xml", backup("1", {{"encC##lun3", "encC##u1"}}));
    const SBackup second = given("2.xml", backup("2", {{"encA##lun1", "encA##s1"}}));
    const SBackup third = given("3.xml", backup("3", {{"encB##lun2", "encB##t1"}}));
    const SBackup fourth = given("4.xml", backup("4", {{"encC##lun3", "encC##u2"}}));
    EXPECT_EQ(decided("encA##lun1;s1&encB##lun2;t1&encC##lun3;u1;u2", {first, second, third, fourth}),
              selected("[encA##lun1;encA##s1][encB##lun2;encB##t1][encC##lun3;encC##u1]", {2, 2, 2, 0},
                       matched({first, second, third, fourth}) + claimed({fourth, third, second, first}),
                       {"[encA:lun1](Used)", "{s1,Available}", "[encB:lun2](Used)", "{t1,Available}",
                        "[encC:lun3](Used)", "{u1,Available}", "{u2,Used}"},
                       {{first, 2}, {second, 2}, {third, 2}, {fourth, 0}}));
}

TEST_F(CRotationOrder, OneReleaseFreesAllTargetsOfTheBackup) {
    const SBackup both =
        given("both.xml", backup("1", {{"encA##lun1", "encA##s1"}, {"encB##lun2", "encB##t1"}}));
    const SBackup other = given("other.xml", backup("2", {{"encB##lun2", "encB##t2"}}));
    EXPECT_EQ(
        decided("encA##lun1;s1&encB##lun2;t1;t2", {other, both}),
        selected("[encA##lun1;encA##s1][encB##lun2;encB##t1]", {0, 2},
                 matched({other, both}) + claimed({other, both}),
                 {"[encA:lun1](Used)", "{s1,Available}", "[encB:lun2](Used)", "{t1,Available}", "{t2,Used}"},
                 {{both, 2}, {other, 0}}));
}

TEST_F(CRotationOrder, BackupThatNamesNoDeviceIsRotatedWithoutFreeingAnything) {
    const SBackup empty = given("empty.xml", backup("0", {}));
    const SBackup a = holder("1", "s1");
    EXPECT_EQ(decided("encA##lun1;s1", {empty, a}),
              selected("[encA##lun1;encA##s1]", {2, 2}, matched({empty, a}) + claimed({a, empty}),
                       {"[encA:lun1](Used)", "{s1,Available}"}, {{empty, 2}, {a, 2}}));
}

TEST_F(CRotationOrder, TimeStampsAreOrderedAsText) {
    const SBackup lesser = holder("999", "s1");
    const SBackup first = holder("1000", "s2");
    EXPECT_EQ(decided("encA##lun1;s1;s2", {lesser, first}),
              selected("[encA##lun1;encA##s2]", {0, 2}, matched({lesser, first}) + claimed({lesser, first}),
                       {"[encA:lun1](Used)", "{s1,Used}", "{s2,Available}"}, {{first, 2}, {lesser, 0}}));
}

TEST_F(CRotationOrder, BackupWithoutATimeStampIsTheOldest) {
    const SBackup with = holder("1", "s1");
    const SBackup without =
        given("without.xml", SNode{{{"objid", udid("encA##lun1")}, {"altobjid", udid("encA##s2")}}, {}});
    EXPECT_EQ(decided("encA##lun1;s1;s2", {with, without}),
              selected("[encA##lun1;encA##s2]", {0, 2}, matched({with, without}) + claimed({with, without}),
                       {"[encA:lun1](Used)", "{s1,Used}", "{s2,Available}"}, {{without, 2}, {with, 0}}));
}

// Which of the two is first is not specified, in either pass, but both orders lead to the same states.
TEST_F(CRotationOrder, EqualTimeStampsEndAlikeWhicheverGoesFirst) {
    const SBackup a = given("a.xml", backup("1", {{"encA##lun1", "encA##s1"}}));
    const SBackup b = given("b.xml", backup("1", {{"encB##lun2", "encB##t1"}}));
    const SObserved observed = decided("encA##lun1;s1&encB##lun2;t1", {a, b});
    SObserved expected = selected(
        "[encA##lun1;encA##s1][encB##lun2;encB##t1]", {2, 2}, matched({a, b}) + claimed({a, b}),
        {"[encA:lun1](Used)", "{s1,Available}", "[encB:lun2](Used)", "{t1,Available}"}, {{a, 2}, {b, 2}});
    EXPECT_THAT(observed.trace, testing::UnorderedElementsAreArray(expected.trace));
    expected.trace = observed.trace;
    EXPECT_EQ(observed, expected);
}

TEST_F(CRotationOrder, ManyBackupsAreClaimedAndRotatedInOrder) {
    constexpr std::size_t kCount = 60;
    std::vector<SBackup> byAge;
    std::string configuration = "encA##lun1";
    std::vector<std::string> targets{"[encA:lun1](Used)"};
    States states;
    for (std::size_t i = 0; i < kCount; ++i) {
        const std::string snap = "s" + std::to_string(i);
        byAge.push_back(holder(std::to_string(100 + i), snap));
        configuration += ";" + snap;
        targets.push_back("{" + snap + (i == 0 ? ",Available}" : ",Used}"));
        states.emplace_back(byAge.back(), i == 0 ? 2 : 0);
    }
    std::vector<SBackup> given;
    Flags flags;
    for (std::size_t i = 0; i < kCount; ++i) {
        // Every one once, out of order.
        const std::size_t age = i * 37 % kCount;
        given.push_back(byAge[age]);
        flags.push_back(age == 0 ? 2 : 0);
    }
    EXPECT_EQ(decided(configuration, given),
              selected("[encA##lun1;encA##s0]", flags,
                       matched(given) + claimed({byAge.rbegin(), byAge.rend()}), targets, states));
}

}  // namespace
}  // namespace fi_test
