#include "cli/outcome/advice.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fi_rotation/fi_process_backups.h>

#include "tests/host/GivenCall.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::adviseOn;
using fi_rotate::EChange;
using fi_rotate::SAdvice;
using fi_rotate::SBackup;
using fi_rotate::SBackupOutcome;
using fi_rotate::SCall;
using fi_rotate::SChange;
using fi_rotate::SOutcome;
using fi_rotate::STrial;
using fi_test::accountedOutcome;
using testing::ElementsAre;
using testing::IsEmpty;

class FiRotateAdvice : public fi_test::CGivenCall {
protected:
    SAdvice advice() const { return adviseOn(call, accountedOutcome(call), accountedOutcome); }
};

// Allowing rotation of backup 2 releases backups 1 and 2; allowing that of backup 4 releases 1, 3 and 4. So
// the advice is backup 2.
TEST_F(FiRotateAdvice, NamesTheExclusionWhoseEndReleasesTheFewestBackups) {
    call.configuration = "A##x;1;2&A##y;3;4";
    const std::string one = give("1", "1", {{"A##y", "A##3"}});
    const std::string two = give("2", "2", {{"A##x", "A##1"}}, FI_EXCLUDE_ROTATION);
    give("3", "3", {{"A##y", "A##4"}});
    const std::string four = give("4", "4", {{"A##x", "A##2"}}, FI_EXCLUDE_ROTATION);
    const SAdvice found = advice();
    ASSERT_EQ(found.neededChanges.size(), 1U);
    EXPECT_EQ(found.neededChanges[0].file, two);
    EXPECT_EQ(found.neededChanges[0].kind, EChange::kAllowRotation);
    EXPECT_THAT(found.released, ElementsAre(one, two));
    ASSERT_EQ(found.trials.size(), 2U);
    EXPECT_EQ(found.trials[1].change.file, four);
    EXPECT_EQ(found.trials[1].released->size(), 3U);
    EXPECT_THAT(*found.releasedWithTargets, ElementsAre(one));
}

TEST_F(FiRotateAdvice, NamesAnInvalidBackupThatHoldsTheTarget) {
    call.configuration = "A##x;1&A##y;2";
    give("new", "2", {{"A##x", "A##1"}});
    const std::string invalid = give("old", "1", {{"A##x", "A##1"}, {"A##y", "A##2"}});
    const SAdvice found = advice();
    ASSERT_EQ(found.neededChanges.size(), 1U);
    EXPECT_EQ(found.neededChanges[0].file, invalid);
    EXPECT_EQ(found.neededChanges[0].kind, EChange::kLeaveOut);
}

TEST_F(FiRotateAdvice, NamesSeveralChangesWhereNoneAloneIsEnough) {
    call.configuration = "A##x;1&A##y;2";
    const std::string one = give("1", "1", {{"A##x", "A##1"}}, FI_EXCLUDE_ROTATION);
    const std::string two = give("2", "2", {{"A##y", "A##2"}}, FI_EXCLUDE_ROTATION);
    const SAdvice found = advice();
    ASSERT_EQ(found.neededChanges.size(), 2U);
    EXPECT_THAT(found.released, testing::UnorderedElementsAre(one, two));
    for (const STrial& trial : found.trials) {
        EXPECT_FALSE(trial.released.has_value());
    }
}

// While the invalid backup is there it holds "p"; without it the newest has that, and the oldest "a".
TEST_F(FiRotateAdvice, NamesSeveralChangesForOneShortageWhereEachNeedsTheOther) {
    call.configuration = "A##v;a&A##w;p;q";
    const std::string oldest = give("1", "1", {{"A##v", "A##a"}}, FI_EXCLUDE_ROTATION);
    const std::string invalid = give("2", "2", {{"A##v", "A##a"}, {"A##w", "A##p"}});
    give("3", "3", {{"A##w", "A##p"}}, FI_EXCLUDE_ROTATION);
    const SAdvice found = advice();
    std::vector<std::string> changes;
    for (const SChange& change : found.neededChanges) {
        changes.push_back((change.kind == EChange::kLeaveOut ? "without " : "released ") + change.file);
    }
    EXPECT_THAT(changes, testing::UnorderedElementsAre("without " + invalid, "released " + oldest));
    EXPECT_THAT(found.released, ElementsAre(oldest));
}

// Ten configurations are short, and each of sixty backups holds a target of one. An administrator waits for
// these calls.
TEST_F(FiRotateAdvice, TakesFewCallsForSixtyBackupsOfTenConfigurations) {
    for (unsigned i = 0; i < 10; ++i) {
        call.configuration += fmt::format("{}A##x{};0;1;2;3;4;5", i == 0 ? "" : "&", i);
    }
    for (unsigned i = 0; i < 60; ++i) {
        give(fmt::format("{}", i), fmt::format("{:02}", i),
             {{fmt::format("A##x{}", i % 10), fmt::format("A##{}", i / 10)}}, FI_EXCLUDE_ROTATION);
    }
    unsigned calls = 0;
    const SAdvice found = adviseOn(call, accountedOutcome(call), [&calls](const SCall& changed) {
        ++calls;
        return accountedOutcome(changed);
    });
    EXPECT_EQ(found.neededChanges.size(), 10U);
    EXPECT_EQ(found.released.size(), 10U);
    // One for each backup, and those for several changes.
    EXPECT_LE(calls, 60 + 100U);
}

TEST_F(FiRotateAdvice, NamesNoBackupWhereAConfigurationHasNoTargets) {
    call.configuration = "A##x";
    give("1", "1", {});
    const SAdvice found = advice();
    EXPECT_THAT(found.neededChanges, IsEmpty());
    EXPECT_THAT(found.trials, IsEmpty());
    ASSERT_TRUE(found.releasedWithTargets.has_value());
}

// The call with the changes, made here once more by hand.
SOutcome outcomeWith(SCall call, const std::vector<SChange>& changes) {
    for (const SChange& change : changes) {
        std::vector<SBackup> left;
        for (SBackup backup : call.backups) {
            const bool isMeant = backup.file == change.file;
            if (isMeant && change.kind == EChange::kAllowRotation) {
                backup.flagWord -= backup.flagWord & FI_EXCLUDE_ROTATION;
            }
            if (!isMeant || change.kind != EChange::kLeaveOut) {
                left.push_back(backup);
            }
        }
        call.backups = left;
    }
    return accountedOutcome(call);
}

std::size_t countReleased(const SOutcome& outcome) {
    return static_cast<std::size_t>(
        std::count_if(outcome.backups.begin(), outcome.backups.end(),
                      [](const SBackupOutcome& backup) { return backup.state == FI_BACKUP_ROTATED; }));
}

// A call of few configurations, most of whose backups are excluded. Some repeat a target and so become
// invalid.
SCall crowdedCall(unsigned seed, const fi_test::CTemporaryFolder& folder) {
    std::mt19937 random(seed);
    const auto below = [&random](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    const unsigned configurations = 1 + below(3);
    std::vector<unsigned> targets;
    SCall call;
    for (unsigned i = 0; i < configurations; ++i) {
        targets.push_back(1 + below(3));
        call.configuration += fmt::format("{}A##x{}", i == 0 ? "" : "&", i);
        for (unsigned j = 0; j < targets[i]; ++j) {
            call.configuration += fmt::format(";{}{}", i, j);
        }
    }
    const unsigned backups = 1 + below(6);
    for (unsigned i = 0; i < backups; ++i) {
        std::vector<fi_test::SPair> pairs;
        for (unsigned j = 0; j < configurations; ++j) {
            if (below(4) != 0) {
                pairs.push_back(
                    {fmt::format("A##x{}", j), fmt::format("A##{}{}", j, (i + below(2)) % targets[j])});
            }
        }
        const std::string stamp = fmt::format("{}", below(100));
        call.backups.push_back({folder.write(fmt::format("{}", i), fi_test::document(stamp, pairs)),
                                below(3) != 0 ? FI_EXCLUDE_ROTATION : 0});
    }
    return call;
}

// Each configuration has a target, so giving up enough backups is always a way out. By what is advised there
// is a selection at the price that was named, and no single exclusion could have been ended at a lower one,
// whoever holds what.
TEST_F(FiRotateAdvice, HoldsInRandomShortages) {
    constexpr unsigned kShortages = 300;
    unsigned shortages = 0;
    unsigned ofOneChange = 0;
    unsigned ofSeveral = 0;
    for (unsigned seed = 0; shortages < kShortages; ++seed) {
        SCOPED_TRACE(seed);
        call = crowdedCall(seed, folder);
        const SOutcome outcome = accountedOutcome(call);
        if (outcome.account->shortages.empty()) {
            continue;
        }
        ++shortages;
        const SAdvice found = advice();
        ASSERT_FALSE(found.neededChanges.empty());
        ++(found.neededChanges.size() == 1 ? ofOneChange : ofSeveral);
        const SOutcome then = outcomeWith(call, found.neededChanges);
        ASSERT_TRUE(then.selection.has_value());
        EXPECT_EQ(countReleased(then), found.released.size());
        for (const SBackup& backup : call.backups) {
            const SOutcome other = outcomeWith(call, {{EChange::kAllowRotation, backup.file}});
            const bool isWayOut = other.selection.has_value();
            EXPECT_FALSE(isWayOut && found.neededChanges.size() != 1) << backup.file;
            EXPECT_FALSE(isWayOut && countReleased(other) < found.released.size()) << backup.file;
        }
    }
    EXPECT_GT(ofOneChange, 100U);
    EXPECT_GT(ofSeveral, 10U);
}

}  // namespace
