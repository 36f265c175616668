#include "host/explanation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fi_rotation/fi_process_backups.h>

#include "host/library_call.h"
#include "host/outcome.h"
#include "tests/host/GivenCall.h"
#include "tests/host/RandomCall.h"
#include "tests/support/TemporaryFolder.h"

namespace {

fi_rotate::SWishes withAccount() {
    fi_rotate::SWishes wishes;
    wishes.account = true;
    return wishes;
}

using fi_rotate::EReason;
using fi_rotate::runCall;
using fi_rotate::SAccount;
using fi_rotate::SAccountBackup;
using fi_rotate::SBackupOutcome;
using fi_rotate::SCall;
using fi_rotate::SOutcome;
using fi_rotate::SReason;
using fi_test::CRandomCall;
using fi_test::document;
using fi_test::kRandomCalls;
using fi_test::SPair;
using testing::ElementsAre;

class HostExplanation : public fi_test::CGivenCall {
protected:
    SOutcome explained(const std::string& configuration) {
        call.configuration = configuration;
        return runCall(call, withAccount());
    }

    static const SReason& reasonFor(const SOutcome& outcome, std::size_t index) {
        return outcome.backups.at(index).reason.value();
    }
};

TEST_F(HostExplanation, KeptAsTheNewestHolder) {
    give("a", "1", {{"A##x", "A##1"}, {"A##y", "A##3"}});
    const SOutcome outcome = explained("A##x;1;2&A##y;3;4");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_KEPT);
    const SReason& reason = reasonFor(outcome, 0);
    EXPECT_EQ(reason.kind, EReason::kNewestHolder);
    EXPECT_THAT(reason.targets, ElementsAre("A##1", "A##3"));
    EXPECT_EQ(inWords(reason), "the newest that holds A##1, A##3");
}

TEST_F(HostExplanation, KeptWithoutATarget) {
    give("a", "1", {});
    const SOutcome outcome = explained("A##x;1");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_KEPT);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)), "holds no target");
}

TEST_F(HostExplanation, KeptBecauseItIsExcludedNamesTheShortConfiguration) {
    give("a", "1", {{"A##x", "A##1"}, {"A##y", "A##3"}}, 4);
    give("b", "2", {{"A##y", "A##4"}});
    const SOutcome outcome = explained("A##x;1;2&A##y;3;4");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_KEPT);
    EXPECT_EQ(outcome.backups[1].state, FI_BACKUP_ROTATED);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)), "excluded from rotation, although A##y had no free target");
}

TEST_F(HostExplanation, KeptBecauseRotationStoppedBeforeIt) {
    give("b", "2", {{"A##x", "A##2"}});
    give("a", "1", {{"A##x", "A##1"}});
    const SOutcome outcome = explained("A##x;1;2");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_KEPT);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)), "rotation stopped before it; holds A##2");
}

TEST_F(HostExplanation, RotatedForTheConfigurationThatWasShort) {
    give("a", "1", {{"A##y", "A##3"}});
    const SOutcome outcome = explained("A##x;1&A##y;3");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_ROTATED);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)),
              "released while A##y had no free target; it held targets of A##y");
}

// A##x is short, too, and stands before the others, but the release frees a target of another one.
TEST_F(HostExplanation, RotatedForTheShortConfigurationThatItFreed) {
    give("a", "1", {{"A##y", "A##3"}, {"A##z", "A##4"}});
    give("b", "2", {{"A##x", "A##1"}});
    const SOutcome outcome = explained("A##x;1&A##y;3&A##z;4;5");
    EXPECT_EQ(reasonFor(outcome, 0).kind, EReason::kNeeded);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)),
              "released while A##y had no free target; it held targets of A##y, A##z");
    EXPECT_EQ(inWords(reasonFor(outcome, 1)),
              "released while A##x had no free target; it held targets of A##x");
}

TEST_F(HostExplanation, RotatedInVain) {
    give("a", "1", {{"A##y", "A##3"}});
    give("b", "2", {});
    give("c", "3", {{"A##x", "A##1"}});
    const SOutcome outcome = explained("A##x;1&A##y;3;4");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_ROTATED);
    EXPECT_EQ(reasonFor(outcome, 0).kind, EReason::kInVain);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)),
              "released while A##x had no free target; it held targets of A##y, none of A##x");
    EXPECT_EQ(inWords(reasonFor(outcome, 1)), "released while A##x had no free target; it held no target");
    EXPECT_EQ(reasonFor(outcome, 2).kind, EReason::kNeeded);
}

TEST_F(HostExplanation, RotatedInVainForAnotherConfigurationOfOneName) {
    give("a", "1", {{"A##x", "A##1"}});
    give("b", "2", {{"A##x", "A##3"}});
    const SOutcome outcome = explained("A##x;1;2&A##x;3");
    EXPECT_EQ(
        inWords(reasonFor(outcome, 0)),
        "released while A##x had no free target; it held targets of A##x, but not of the one that was short");
    EXPECT_EQ(inWords(reasonFor(outcome, 1)),
              "released while A##x had no free target; it held targets of A##x");
}

TEST_F(HostExplanation, ReleasedForNothingInACallWithoutASelection) {
    give("a", "1", {{"A##y", "A##3"}});
    give("b", "2", {{"A##x", "A##1"}}, FI_EXCLUDE_ROTATION);
    const SOutcome outcome = explained("A##x;1&A##y;3");
    EXPECT_FALSE(outcome.selection.has_value());
    EXPECT_EQ(inWords(reasonFor(outcome, 0)),
              "would be released while A##y had no free target; it holds targets of A##y");
}

TEST_F(HostExplanation, InvalidBecauseAPairNamesNoTarget) {
    give("a", "1", {{"A##x", "A##1"}, {"A##y", "A##9"}});
    const SOutcome outcome = explained("A##x;1&A##y;3");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_INVALID);
    const SReason& reason = reasonFor(outcome, 0);
    EXPECT_EQ(reason.kind, EReason::kUnknownTarget);
    EXPECT_EQ(reason.objid, "UDID##v##m##A##y");
    EXPECT_EQ(reason.altobjid, "UDID##v##m##A##9");
    EXPECT_EQ(inWords(reason), "UDID##v##m##A##y with UDID##v##m##A##9 names no target of A##y");
}

TEST_F(HostExplanation, InvalidBecauseAPairNamesNoConfiguration) {
    give("a", "1", {{"B##x", "A##1"}});
    const SOutcome outcome = explained("A##x;1");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_INVALID);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)), "UDID##v##m##B##x names no configuration");
}

// The check ends with the first, in the order of the objids.
TEST_F(HostExplanation, InvalidBecauseOfTheFirstPairOfSeveralThatNameNothing) {
    give("a", "1", {{"A##y", "A##9"}, {"A##x", "A##8"}, {"B##x", "A##1"}});
    EXPECT_EQ(inWords(reasonFor(explained("A##x;1&A##y;3"), 0)),
              "UDID##v##m##A##x with UDID##v##m##A##8 names no target of A##x");
}

TEST_F(HostExplanation, InvalidBecauseATargetWasHeldAlready) {
    give("old", "1", {{"A##x", "A##1"}});
    const std::string newer = give("new", "2", {{"A##x", "A##1"}});
    const SOutcome outcome = explained("A##x;1;2");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_INVALID);
    const SReason& reason = reasonFor(outcome, 0);
    EXPECT_EQ(reason.kind, EReason::kHeldAlready);
    EXPECT_EQ(inWords(reason), "A##1 of A##x was already held by " + newer);
}

TEST_F(HostExplanation, InvalidBecauseTwoOfItsPairsNameOneTarget) {
    // Two objids of one device: only the vendor differs.
    call.backups.resize(1);
    call.backups[0].file =
        folder.write("a",
                     "<Node><timeStamp>1</timeStamp>"
                     "<Node><objid>UDID##v##m##A##x</objid><altobjid>UDID##v##m##A##1</altobjid></Node>"
                     "<Node><objid>UDID##w##m##A##x</objid><altobjid>UDID##v##m##A##1</altobjid></Node>"
                     "</Node>");
    const SOutcome outcome = explained("A##x;1;2");
    EXPECT_EQ(outcome.backups[0].state, FI_BACKUP_INVALID);
    EXPECT_EQ(inWords(reasonFor(outcome, 0)), "A##1 of A##x was already held by another of its pairs");
}

TEST_F(HostExplanation, HasNoReasonForABackupThatWasNotLoaded) {
    call.backups.push_back({folder.path("missing"), 0});
    const SOutcome outcome = explained("A##x;1");
    EXPECT_FALSE(outcome.backups[0].reason.has_value());
}

TEST_F(HostExplanation, NamesShortConfigurationsAndTheHoldersOfTheirTargets) {
    give("excluded", "1", {{"A##x", "A##1"}}, 4);
    give("holder", "3", {{"A##y", "A##3"}});
    give("invalid", "2", {{"A##x", "A##2"}, {"A##y", "A##3"}});
    const SOutcome outcome = explained("A##x;1;2&A##y;3&A##z");
    EXPECT_FALSE(outcome.selection.has_value());
    ASSERT_TRUE(outcome.account.has_value());
    const auto& shortages = outcome.account->shortages;
    ASSERT_EQ(shortages.size(), 2U);
    // The first configuration and its targets 1 and 2, held by the first and the third backup.
    EXPECT_EQ(shortages[0].configuration, 0U);
    ASSERT_EQ(shortages[0].targets.size(), 2U);
    EXPECT_EQ(shortages[0].targets[0].target, 0U);
    EXPECT_EQ(shortages[0].targets[0].holder, 0U);
    EXPECT_TRUE(shortages[0].targets[0].isExcluded);
    EXPECT_EQ(shortages[0].targets[1].target, 1U);
    EXPECT_EQ(shortages[0].targets[1].holder, 2U);
    EXPECT_FALSE(shortages[0].targets[1].isExcluded);
    EXPECT_EQ(shortages[1].configuration, 2U);
    EXPECT_TRUE(shortages[1].targets.empty());
}

TEST_F(HostExplanation, NamesTargetsWithTheEnclosureThatTheyCarryOn) {
    give("a", "1", {{"A##x", "B##1"}});
    const SOutcome outcome = explained("A##x;B##1;2&A##y&&C##");
    ASSERT_TRUE(outcome.account.has_value());
    const auto& configurations = outcome.account->configurations;
    ASSERT_EQ(configurations.size(), 2U);
    EXPECT_EQ(configurations[0].first, "A##x");
    EXPECT_THAT(configurations[0].targets, ElementsAre("B##1", "B##2"));
    EXPECT_EQ(configurations[1].first, "A##y");
    EXPECT_THAT(configurations[1].targets, ElementsAre());
}

std::int32_t stateOf(EReason kind) {
    switch (kind) {
        case EReason::kNeeded:
        case EReason::kInVain:
            return FI_BACKUP_ROTATED;
        case EReason::kUnknownTarget:
        case EReason::kUnknownConfiguration:
        case EReason::kHeldAlready:
            return FI_BACKUP_INVALID;
        default:
            return FI_BACKUP_KEPT;
    }
}

// The configuration that a reason names had no free target before the release. With the reason kNeeded the
// backup held one of its targets, with kInVain none. Several configurations may have its name.
void expectTrueReleases(const SAccount& account) {
    for (std::size_t index = 0; index < account.backups.size(); ++index) {
        const SReason& reason = *account.backups[index].reason;
        if (stateOf(reason.kind) != FI_BACKUP_ROTATED) {
            continue;
        }
        std::size_t ofName = 0;
        bool wasShort = false;
        bool heldOne = false;
        for (std::size_t i = 0; i < account.configurations.size(); ++i) {
            const auto& row = account.heldBefore[i];
            const bool isFull = std::find(row.begin(), row.end(), std::nullopt) == row.end();
            if (account.configurations[i].first == reason.configuration) {
                ++ofName;
                wasShort = wasShort || isFull;
                heldOne = heldOne || (isFull && std::find(row.begin(), row.end(), index) != row.end());
            }
        }
        EXPECT_TRUE(wasShort) << inWords(reason);
        EXPECT_EQ(heldOne, reason.kind == EReason::kNeeded || (heldOne && ofName > 1)) << inWords(reason);
    }
}

TEST_F(HostExplanation, AgreesWithTheLibraryOnRandomCalls) {
    std::set<EReason> kinds;
    unsigned withoutSelection = 0;
    for (unsigned seed = 0; seed < kRandomCalls; ++seed) {
        SCOPED_TRACE(seed);
        const SOutcome outcome = runCall(CRandomCall(seed, folder).make(), withAccount());
        ASSERT_TRUE(outcome.account.has_value());
        EXPECT_EQ(outcome.account->selection, outcome.selection);
        if (outcome.exception.has_value()) {
            continue;
        }
        withoutSelection += outcome.selection.has_value() ? 0U : 1U;
        EXPECT_EQ(outcome.account->shortages.empty(), outcome.selection.has_value());
        for (const SAccountBackup& backup : outcome.account->backups) {
            ASSERT_TRUE(backup.reason.has_value()) << backup.file;
            EXPECT_EQ(backup.state, stateOf(backup.reason->kind)) << inWords(*backup.reason);
            kinds.insert(backup.reason->kind);
        }
        expectTrueReleases(*outcome.account);
        for (const SBackupOutcome& backup : outcome.backups) {
            ASSERT_EQ(backup.reason.has_value(), backup.isLoaded) << backup.given.file;
            if (backup.reason.has_value() && backup.state.has_value()) {
                EXPECT_EQ(*backup.state, stateOf(backup.reason->kind)) << inWords(*backup.reason);
            }
        }
    }
    EXPECT_EQ(kinds.size(), 9U);
    EXPECT_GT(withoutSelection, kRandomCalls / 20);
}

}  // namespace
