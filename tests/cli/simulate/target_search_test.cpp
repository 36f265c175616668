#include "cli/simulate/target_search.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/base/calendar.h"

namespace {

using fi_rotate::ESearch;
using fi_rotate::findFewestTargets;
using fi_rotate::kSecondsPerDay;
using fi_rotate::SFewestTargets;
using fi_rotate::SPlan;

bool always(std::size_t /*targets*/, std::size_t /*rounds*/) {
    return true;
}

SPlan daily(std::size_t rounds) {
    SPlan plan;
    plan.rounds = rounds;
    plan.every = kSecondsPerDay;
    plan.start = fi_rotate::parseTime("2026-10-01").value();
    return plan;
}

// With n targets and no exclusion each snapshot is rotated n rounds after it was taken.
TEST(FiRotateGoal, WithoutExclusionADayNeedsATarget) {
    for (const std::size_t days : {1U, 2U, 5U, 8U}) {
        const auto goal = static_cast<std::int64_t>(days) * kSecondsPerDay;
        const SFewestTargets least =
            findFewestTargets(daily(40), {"encA##lun1", {"encA##s1", "encA##s2"}}, goal, always);
        EXPECT_EQ(least.search, ESearch::kFound);
        EXPECT_EQ(least.targets, days);
    }
}

// Twice a day: three rounds are needed for a day and a bit more.
TEST(FiRotateGoal, CountsInTimeNotInRounds) {
    SPlan plan = daily(20);
    plan.every = kSecondsPerDay / 2;
    EXPECT_EQ(findFewestTargets(plan, {"encA##lun1", {}}, kSecondsPerDay + 1, always).targets, 3);
}

// Each third round is excluded, for six days. In each round all backups of the last three days are younger
// than the goal, and of those four and five days old at most one is excluded: four that must stay, and a
// target for the round.
TEST(FiRotateGoal, ExcludedBackupsNeedTargetsOfTheirOwn) {
    SPlan plan = daily(10);
    plan.excludedEvery = 3;
    plan.excludedFor = 6 * kSecondsPerDay;
    EXPECT_EQ(findFewestTargets(plan, {"encA##lun1", {"encA##s1"}}, 4 * kSecondsPerDay, always).targets, 5);
}

TEST(FiRotateGoal, ExclusionsThatNeverEndHaveNoLimit) {
    SPlan byNumber = daily(10);
    byNumber.excludedEvery = 3;
    SPlan byDay = daily(10);
    byDay.excludedWeekday = fi_rotate::parseWeekday("sunday");
    for (const SPlan& plan : {byNumber, byDay}) {
        EXPECT_EQ(findFewestTargets(plan, {"encA##lun1", {"encA##s1"}}, kSecondsPerDay, always).search,
                  ESearch::kNoLimit);
    }
}

// 2026-10-01 is a Thursday, and so are all rounds.
TEST(FiRotateGoal, ADayOfTheWeekWithoutRoundsExcludesNone) {
    SPlan plan = daily(10);
    plan.every = 7 * kSecondsPerDay;
    plan.excludedWeekday = fi_rotate::parseWeekday("sunday");
    const SFewestTargets least = findFewestTargets(plan, {"encA##lun1", {}}, 21 * kSecondsPerDay, always);
    EXPECT_EQ(least.search, ESearch::kFound);
    EXPECT_EQ(least.targets, 3);
}

TEST(FiRotateGoal, MoreRoundsThanItTakesToSettleNeedNoMoreTargets) {
    for (const std::size_t every : {1U, 3U}) {
        for (const int days : {2, 7}) {
            for (const int goal : {1, 5}) {
                SPlan plan = daily(0);
                plan.excludedEvery = every;
                plan.excludedFor = days * kSecondsPerDay;
                plan.rounds = fi_rotate::roundsUntilSettled(plan, goal * kSecondsPerDay).value();
                const auto leastOf = [&plan, goal] {
                    return findFewestTargets(plan, {"encA##lun1", {}}, goal * kSecondsPerDay, always).targets;
                };
                const std::size_t settled = leastOf();
                plan.rounds *= 3;
                EXPECT_EQ(leastOf(), settled) << every << " " << days << " " << goal;
            }
        }
    }
}

// Whether the search would try more targets than stand before the second mention, or fewer.
TEST(FiRotateGoal, NoNumberHelpsWhereATargetIsNamedTwice) {
    const std::vector<std::string> targets{"encA##s1", "encA##s2", "encA##s3", "encA##s3"};
    for (const int days : {1, 2, 3, 4, 5}) {
        EXPECT_EQ(findFewestTargets(daily(20), {"encA##lun1", targets}, days * kSecondsPerDay, always).search,
                  ESearch::kNever)
            << days;
    }
}

TEST(FiRotateGoal, NoNumberHelpsWhereATargetIsNamedTwiceThoughExclusionsNeverEnd) {
    SPlan plan = daily(10);
    plan.excludedEvery = 3;
    EXPECT_EQ(
        findFewestTargets(plan, {"encA##lun1", {"encA##s1", "encA##s1"}}, kSecondsPerDay, always).search,
        ESearch::kNever);
}

TEST(FiRotateGoal, InventedTargetsAreNoneThatTheConfigurationHas) {
    EXPECT_EQ(findFewestTargets(daily(9), {"encA##lun1", {"SPARE##1"}}, 3 * kSecondsPerDay, always).targets,
              3);
}

TEST(FiRotateGoal, SaysThatItWasStopped) {
    std::size_t asked = 0;
    const auto stopAtTheTenth = [&asked](std::size_t /*targets*/, std::size_t /*rounds*/) {
        return ++asked < 10;
    };
    EXPECT_EQ(findFewestTargets(daily(40), {"encA##lun1", {}}, 5 * kSecondsPerDay, stopAtTheTenth).search,
              ESearch::kStopped);
    EXPECT_EQ(asked, 10);
}

}  // namespace
