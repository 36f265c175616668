#include "cli/simulate/target_search.h"

#include <string>

#include <gtest/gtest.h>

#include "cli/base/calendar.h"

namespace {

using fi_rotate::ESearch;
using fi_rotate::kSecondsPerDay;
using fi_rotate::leastTargets;
using fi_rotate::SLeastTargets;
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
        const SLeastTargets least =
            leastTargets(daily(40), {"encA##lun1", {"encA##s1", "encA##s2"}}, goal, always);
        EXPECT_EQ(least.search, ESearch::kFound);
        EXPECT_EQ(least.targets, days);
    }
}

// Twice a day: three rounds are needed for a day and a bit more.
TEST(FiRotateGoal, CountsInTimeNotInRounds) {
    SPlan plan = daily(20);
    plan.every = kSecondsPerDay / 2;
    EXPECT_EQ(leastTargets(plan, {"encA##lun1", {}}, kSecondsPerDay + 1, always).targets, 3);
}

// Of 9 rounds 3, 6 and 9 are excluded. With n targets the k-th other round is number k + (k-1)/2 (rounded
// down); it is rotated in round n + k, when it is n - (k-1)/2 days old. With 5 targets k goes up to 4, and
// the fourth is 4 days old, which is the goal; with 4, round 6 rotates the second, 4 days old, and round 7
// the third, 3 days old.
TEST(FiRotateGoal, ExcludedBackupsNeedTargetsOfTheirOwn) {
    SPlan plan = daily(9);
    plan.excludedEvery = 3;
    EXPECT_EQ(leastTargets(plan, {"encA##lun1", {"encA##s1"}}, 4 * kSecondsPerDay, always).targets, 5);
}

TEST(FiRotateGoal, NoNumberHelpsWhereATargetIsNamedTwice) {
    EXPECT_EQ(
        leastTargets(daily(9), {"encA##lun1", {"encA##s1", "encA##s1"}}, 2 * kSecondsPerDay, always).search,
        ESearch::kNever);
}

TEST(FiRotateGoal, InventedTargetsAreNoneThatTheConfigurationHas) {
    EXPECT_EQ(leastTargets(daily(9), {"encA##lun1", {"SPARE##1"}}, 3 * kSecondsPerDay, always).targets, 3);
}

TEST(FiRotateGoal, SaysThatItWasStopped) {
    std::size_t asked = 0;
    const auto stopAtTheTenth = [&asked](std::size_t /*targets*/, std::size_t /*rounds*/) {
        return ++asked < 10;
    };
    EXPECT_EQ(leastTargets(daily(40), {"encA##lun1", {}}, 5 * kSecondsPerDay, stopAtTheTenth).search,
              ESearch::kStopped);
    EXPECT_EQ(asked, 10);
}

}  // namespace
