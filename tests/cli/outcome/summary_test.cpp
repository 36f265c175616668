#include "cli/outcome/summary.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fi_rotation/fi_process_backups.h>

#include "tests/host/GivenCall.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::restorePointsOf;
using fi_rotate::SBackupOutcome;
using fi_rotate::SCall;
using fi_rotate::SOutcome;
using fi_rotate::SRestorePoints;
using fi_rotate::STotals;
using fi_test::accountedOutcome;
using testing::ElementsAre;
using testing::IsEmpty;

class FiRotateSummary : public fi_test::CGivenCall {};

TEST_F(FiRotateSummary, CountsEachStateAndReleasesThatFreedNoNeededTarget) {
    call.configuration = "A##x;1&A##y;3;4;5";
    give("a", "1", {{"A##y", "A##3"}});
    give("b", "2", {{"A##x", "A##1"}});
    give("c", "3", {{"A##y", "A##4"}});
    give("d", "4", {{"A##y", "A##4"}});
    give("e", "5", {{"A##z", "A##4"}});
    call.backups.push_back({folder.path("missing"), 0});
    const STotals totals = fi_rotate::totalsOf(accountedOutcome(call));
    EXPECT_THAT(totals.ofState, ElementsAre(1, 2, 2, 1));
    EXPECT_EQ(totals.inVain, 1U);
    EXPECT_EQ(totals.withoutState, 0U);
}

TEST_F(FiRotateSummary, CountsBackupsWithoutAState) {
    call.configuration = "A##x;1";
    give("a", "1", {{"A##x", "A##1"}}, FI_EXCLUDE_ROTATION);
    EXPECT_EQ(fi_rotate::totalsOf(accountedOutcome(call)).withoutState, 1U);
}

TEST_F(FiRotateSummary, NamesConfigurationsWhoseRestorePointsAreGone) {
    call.configuration = "A##x;1&A##y;2;3&A##z;4";
    give("a", "1", {{"A##x", "A##1"}, {"A##y", "A##2"}});
    give("b", "2", {{"A##y", "A##3"}});
    EXPECT_THAT(fi_rotate::withoutRestorePoints(accountedOutcome(call)), ElementsAre("A##x"));
}

TEST_F(FiRotateSummary, HasAllRestorePointsWithoutASelection) {
    call.configuration = "A##x;1&A##y;2";
    give("a", "1", {{"A##x", "A##1"}});
    give("b", "2", {{"A##y", "A##2"}}, FI_EXCLUDE_ROTATION);
    const SOutcome outcome = accountedOutcome(call);
    ASSERT_FALSE(outcome.selection.has_value());
    EXPECT_EQ(restorePointsOf(outcome).at(0).after, 1U);
    EXPECT_THAT(fi_rotate::withoutRestorePoints(outcome), IsEmpty());
}

// From the targets in the reasons, each of which belongs to one configuration only.
std::size_t countHolders(const SOutcome& outcome, const std::set<std::string>& targets, bool isBefore) {
    std::size_t count = 0;
    for (const SBackupOutcome& backup : outcome.backups) {
        const bool isCounted =
            backup.state == FI_BACKUP_KEPT || (isBefore && backup.state == FI_BACKUP_ROTATED);
        bool holds = false;
        for (const std::string& target :
             backup.reason.has_value() ? backup.reason->targets : std::vector<std::string>()) {
            holds = holds || targets.count(target) != 0;
        }
        count += isCounted && holds ? 1 : 0;
    }
    return count;
}

TEST_F(FiRotateSummary, CountsRestorePointsOfRandomCalls) {
    std::size_t counted = 0;
    std::size_t gone = 0;
    for (unsigned seed = 0; seed < fi_test::kRandomCalls; ++seed) {
        SCOPED_TRACE(seed);
        const SOutcome outcome = accountedOutcome(fi_test::CRandomCall(seed, folder).make());
        if (!outcome.selection.has_value() || !outcome.account.has_value()) {
            continue;
        }
        const std::vector<SRestorePoints> points = restorePointsOf(outcome);
        const auto& configurations = outcome.account->configurations;
        ASSERT_TRUE(points.empty() || points.size() == configurations.size());
        std::multiset<std::string> all;
        for (const auto& configuration : configurations) {
            const std::set<std::string> once(configuration.targets.begin(), configuration.targets.end());
            all.insert(once.begin(), once.end());
        }
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto& names = configurations[i].targets;
            const std::set<std::string> targets(names.begin(), names.end());
            const bool isShared =
                std::any_of(targets.begin(), targets.end(),
                            [&all](const std::string& name) { return all.count(name) > 1; });
            if (isShared) {
                continue;
            }
            EXPECT_EQ(points[i].before, countHolders(outcome, targets, true));
            EXPECT_EQ(points[i].after, countHolders(outcome, targets, false));
            ++counted;
            gone += points[i].areAllGone() ? 1 : 0;
        }
    }
    EXPECT_GT(counted, fi_test::kRandomCalls / 10);
    EXPECT_GT(gone, 0U);
}

}  // namespace
