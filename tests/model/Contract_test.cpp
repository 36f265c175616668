#include "tests/model/Contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

// For each rule of the contract, a right answer and one that breaks the rule. Both were worked out by hand.

namespace fi_model {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

constexpr const char* kFirst = "E##l1";
constexpr const char* kOne = "E##s1";
constexpr const char* kTwo = "E##s2";

SWorldBackup holding(const std::string& name, std::size_t age, const std::vector<std::string>& targets) {
    SWorldBackup backup{name, std::vector<SWorldPair>(), age, false};
    char spelling = '1';
    for (const std::string& target : targets) {
        backup.pairs->push_back({kFirst, target, spelling++});
    }
    return backup;
}

SWorldBackup excluded(SWorldBackup backup) {
    backup.isExcluded = true;
    return backup;
}

SWorldBackup missing(const std::string& name) {
    return {name, std::nullopt, 0, false};
}

SWorld world(const std::vector<std::string>& targets, const std::vector<SWorldBackup>& backups) {
    return {{{kFirst, targets}}, backups};
}

SAnswer selected(const std::string& target, const std::vector<std::int32_t>& flags) {
    SAnswer answer;
    answer.selection = "[" + std::string(kFirst) + ";" + target + "]";
    answer.flags = flags;
    return answer;
}

SAnswer failed(const std::vector<std::int32_t>& flags) {
    SAnswer answer;
    answer.status = 3;
    answer.flags = flags;
    return answer;
}

SAnswer thrown(const std::vector<std::int32_t>& flags) {
    SAnswer answer;
    answer.malformed = SMalformed{"UDID##1##m##", 1};
    answer.flags = flags;
    return answer;
}

struct SCase {
    std::string rule;
    SWorld world;
    SAnswer right;
    SAnswer wrong;
};

std::vector<SCase> cases() {
    const SWorldBackup old = holding("a", 0, {kOne});
    const SWorldBackup young = holding("b", 1, {kTwo});
    const SWorldBackup youngToo = holding("b", 1, {kOne});
    return {
        {"aChosenTargetIsHeldByNoKeptBackup", world({kOne, kTwo}, {old}), selected(kTwo, {0}),
         selected(kOne, {0})},
        {"anExcludedBackupIsNeverRotated", world({kOne, kTwo}, {excluded(old), young}),
         selected(kTwo, {0, 2}), selected(kOne, {2, 0})},
        // The last flag word of a name counts.
        {"anExcludedBackupIsNeverRotated", world({kOne}, {old, excluded(old)}), failed({3, 5}),
         selected(kOne, {2, 2})},
        {"nothingIsReleasedWhenEveryConfigurationHasAFreeTarget", world({kOne, kTwo}, {old}),
         selected(kTwo, {0}), selected(kOne, {2})},
        {"nothingIsReleasedWhenEveryConfigurationHasAFreeTarget", world({kOne}, {}), selected(kOne, {}),
         failed({})},
        {"ofTwoClaimantsTheNewerWins", world({kOne, kTwo}, {old, youngToo}), selected(kTwo, {1, 0}),
         selected(kTwo, {0, 1})},
        {"ofTwoClaimantsTheNewerWins", world({kOne, kTwo}, {old, holding("b", 0, {kOne})}),
         selected(kTwo, {0, 1}), selected(kTwo, {0, 0})},
        {"aBackupThatLosesNoTargetIsNotInvalid", world({kOne, kTwo}, {old}), selected(kTwo, {0}),
         selected(kTwo, {1})},
        // It names its target twice; the second time the target is used already, by itself.
        {"ofTwoClaimantsTheNewerWins", world({kOne, kTwo}, {old, holding("b", 1, {kOne, kOne})}),
         selected(kTwo, {1, 1}), selected(kTwo, {0, 1})},
        {"theOldestAreReleasedFirst", world({kOne, kTwo}, {old, young}), selected(kOne, {2, 0}),
         selected(kTwo, {0, 2})},
        {"noMoreIsReleasedThanNeeded", world({kOne, kTwo}, {old, young}), selected(kOne, {2, 0}),
         selected(kOne, {2, 2})},
        {"aCallFailsOnlyWhenNothingIsLeftToRelease", world({kOne}, {old}), selected(kOne, {2}), failed({3})},
        {"everyConfigurationGetsItsFirstFreeTarget", world({kOne, kTwo}, {}), selected(kOne, {}),
         selected(kTwo, {})},
        // The targets of a backup that loses one of them stay in use.
        {"everyConfigurationGetsItsFirstFreeTarget",
         world({kOne, kTwo, "F##s1"}, {holding("a", 0, {kOne, kTwo}), youngToo}), selected("F##s1", {1, 0}),
         selected(kTwo, {1, 0})},
        // A target that is named twice is held in its first place only.
        {"everyConfigurationGetsItsFirstFreeTarget", world({kOne, kOne}, {old}), selected(kOne, {0}),
         selected(kTwo, {0})},
        {"aBackupThatDisagreesIsInvalid", world({kOne}, {holding("a", 0, {"G##s1"})}), selected(kOne, {1}),
         selected(kOne, {0})},
        // Of pairs with one objid the last counts.
        {"aBackupThatDisagreesIsInvalid",
         world({kOne},
               {{"a", std::vector<SWorldPair>{{kFirst, kOne, '1'}, {kFirst, "G##s1", '1'}}, 0, false}}),
         selected(kOne, {1}), selected(kOne, {2})},
        {"aMalformedIdentifierEndsTheCall", world({kOne}, {holding("a", 0, {kOne, ""})}), thrown({3}),
         selected(kOne, {1})},
        // A pair that is not configured comes before it.
        {"aMalformedIdentifierEndsTheCall", world({kOne}, {holding("a", 0, {"G##s1", ""})}),
         selected(kOne, {1}), thrown({3})},
        {"aCallThatFailsHandsNothingOver", world({kOne}, {excluded(old)}), failed({5}), failed({0})},
        {"aCallThatFailsHandsNothingOver", world({kOne}, {holding("a", 0, {""})}), thrown({3}), thrown({0})},
        // It hides the document after it, which holds the only target.
        {"onlyBackupsThatWereReadGetAState", world({kOne}, {missing("a"), youngToo}), selected(kOne, {3, 3}),
         selected(kOne, {3, 2})},
        {"onlyBackupsThatWereReadGetAState", world({kOne, kTwo}, {old}), selected(kTwo, {0}),
         selected(kTwo, {3})},
    };
}

TEST(Contract, RightAnswersBreakNoRule) {
    for (const SCase& one : cases()) {
        EXPECT_THAT(brokenRules(one.world, one.right), IsEmpty()) << describe(one.world);
    }
}

TEST(Contract, WrongAnswersBreakTheirRule) {
    for (const SCase& one : cases()) {
        EXPECT_THAT(brokenRules(one.world, one.wrong), Contains(one.rule)) << describe(one.world);
    }
}

TEST(Contract, EveryRuleIsBrokenByAWrongAnswer) {
    std::set<std::string> broken;
    for (const SCase& one : cases()) {
        broken.insert(one.rule);
    }
    for (const SRule& rule : contract()) {
        EXPECT_THAT(broken, Contains(rule.name));
    }
}

// A backup that loses a target to a newer one keeps its other targets in use, so that the call may fail.
TEST(Contract, CallMayFailWhenABackupThatLostATargetHoldsTheLastOne) {
    const SWorld both{{{kFirst, {kOne}}, {"E##l2", {kTwo}}},
                      {{"a", std::vector<SWorldPair>{{kFirst, kOne, '1'}, {"E##l2", kTwo, '2'}}, 0, false},
                       holding("b", 1, {kOne})}};
    EXPECT_THAT(brokenRules(both, failed({3, 3})), IsEmpty());
}

// One flag word stands for two backups, one of which loses the target to the other.
TEST(Contract, EitherStateIsRightForANameThatIsListedTwice) {
    const SWorldBackup once = holding("a", 0, {kOne});
    const SWorld twice = world({kOne, kTwo}, {once, once});
    EXPECT_THAT(brokenRules(twice, selected(kTwo, {0, 0})), IsEmpty());
    EXPECT_THAT(brokenRules(twice, selected(kTwo, {1, 1})), IsEmpty());
}

}  // namespace
}  // namespace fi_model
