#include "tests/model/Contract.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>

namespace fi_model {
namespace {

constexpr std::int32_t kSuccess = 0;
constexpr std::int32_t kFailure = 3;
constexpr std::int32_t kKept = 0;
constexpr std::int32_t kInvalid = 1;
constexpr std::int32_t kRotated = 2;

bool succeeds(const SDecision& decision) {
    return !decision.answer.malformed && decision.answer.status == kSuccess;
}

std::int32_t stateOf(const SHolder& holder, const SDecision& decision) {
    return decision.answer.flags.at(holder.entry);
}

// In such a call one flag word stands for two backups, and does not tell the state of each.
bool listsANameTwice(const SWorld& world) {
    std::set<std::string> names;
    for (const SWorldBackup& backup : world.backups) {
        names.insert(backup.name);
    }
    return names.size() < world.backups.size();
}

// Whether the flag words tell the state of each backup.
bool tellsStates(const SDecision& decision) {
    return succeeds(decision) && !listsANameTwice(decision.world);
}

Holders holdersWithState(std::int32_t state, const SDecision& decision) {
    Holders found;
    for (const SHolder& holder : decision.holders) {
        if (stateOf(holder, decision) == state) {
            found.push_back(holder);
        }
    }
    return found;
}

using Entries = std::set<std::size_t>;

Entries entriesOf(const Holders& holders) {
    Entries entries;
    for (const SHolder& holder : holders) {
        entries.insert(holder.entry);
    }
    return entries;
}

bool isHeldByANewerOne(const TargetIndex& index, const SHolder& than, const Holders& holders) {
    return std::any_of(holders.begin(), holders.end(),
                       [&](const SHolder& other) { return other.age > than.age && other.holds(index); });
}

// Whether no backup holds the target, or one of its newest holders is among the released. (A holder that is
// not the newest, or that was behind another one of the same age, lost the target and is never released.)
bool isFree(const TargetIndex& index, const Entries& released, const Holders& holders) {
    bool isHeld = false;
    for (const SHolder& holder : holders) {
        if (holder.holds(index)) {
            isHeld = true;
            if (released.count(holder.entry) > 0 && !isHeldByANewerOne(index, holder, holders)) {
                return true;
            }
        }
    }
    return !isHeld;
}

std::optional<std::size_t> firstFree(std::size_t configuration, const Entries& released,
                                     const SDecision& decision) {
    const std::size_t targets = decision.world.configurations[configuration].targets.size();
    for (std::size_t target = 0; target < targets; ++target) {
        if (isFree({configuration, target}, released, decision.holders)) {
            return target;
        }
    }
    return std::nullopt;
}

bool everyConfigurationHasAFreeTarget(const Entries& released, const SDecision& decision) {
    for (std::size_t one = 0; one < decision.world.configurations.size(); ++one) {
        if (!firstFree(one, released, decision)) {
            return false;
        }
    }
    return true;
}

bool losesNoTarget(const SHolder& holder, const Holders& holders) {
    const auto isAlone = [&](const TargetIndex& index) {
        return std::none_of(holders.begin(), holders.end(), [&](const SHolder& other) {
            return other.entry != holder.entry && other.age >= holder.age && other.holds(index);
        });
    };
    return holder.agreement == EAgreement::kAgrees && !holder.namesATargetTwice() &&
           std::all_of(holder.indexes.begin(), holder.indexes.end(), isAlone);
}

bool shareATarget(const SHolder& one, const SHolder& other) {
    return std::any_of(one.indexes.begin(), one.indexes.end(),
                       [&](const TargetIndex& index) { return other.holds(index); });
}

bool namesEachTargetOnce(const SWorld& world) {
    std::set<std::string> names;
    std::size_t count = 0;
    for (const SWorldConfiguration& configuration : world.configurations) {
        names.insert(configuration.targets.begin(), configuration.targets.end());
        count += configuration.targets.size();
    }
    return names.size() == count;
}

const std::string& nameOf(const TargetIndex& index, const SWorld& world) {
    return world.configurations[index.first].targets[index.second];
}

std::vector<std::int32_t> givenFlags(const SWorld& world) {
    std::vector<std::int32_t> flags;
    for (const SWorldBackup& backup : world.backups) {
        flags.push_back(backup.isExcluded ? kExcludedFlag : kOtherFlag);
    }
    return flags;
}

}  // namespace

bool aChosenTargetIsHeldByNoKeptBackup(const SDecision& decision) {
    if (!succeeds(decision) || !namesEachTargetOnce(decision.world)) {
        return true;
    }
    const std::string selection = decision.answer.selection.value_or("");
    for (const SHolder& kept : holdersWithState(kKept, decision)) {
        for (const TargetIndex& index : kept.indexes) {
            if (selection.find(";" + nameOf(index, decision.world) + "]") != std::string::npos) {
                return false;
            }
        }
    }
    return true;
}

bool anExcludedBackupIsNeverRotated(const SDecision& decision) {
    return std::none_of(decision.holders.begin(), decision.holders.end(), [&](const SHolder& holder) {
        return holder.isExcluded && stateOf(holder, decision) == kRotated;
    });
}

bool nothingIsReleasedWhenEveryConfigurationHasAFreeTarget(const SDecision& decision) {
    if (decision.answer.malformed || !everyConfigurationHasAFreeTarget({}, decision)) {
        return true;
    }
    return succeeds(decision) && holdersWithState(kRotated, decision).empty();
}

bool ofTwoClaimantsTheNewerWins(const SDecision& decision) {
    if (!tellsStates(decision)) {
        return true;
    }
    const auto isInvalid = [&](const SHolder& holder) { return stateOf(holder, decision) == kInvalid; };
    for (const SHolder& older : decision.holders) {
        for (const SHolder& newer : decision.holders) {
            if (older.entry == newer.entry || older.age > newer.age || !shareATarget(older, newer)) {
                continue;
            }
            const bool mayLose = older.age == newer.age;
            if (!isInvalid(older) && !(mayLose && isInvalid(newer))) {
                return false;
            }
        }
    }
    return true;
}

bool aBackupThatLosesNoTargetIsNotInvalid(const SDecision& decision) {
    return !tellsStates(decision) ||
           std::none_of(decision.holders.begin(), decision.holders.end(), [&](const SHolder& holder) {
               return losesNoTarget(holder, decision.holders) && stateOf(holder, decision) == kInvalid;
           });
}

bool theOldestAreReleasedFirst(const SDecision& decision) {
    if (!tellsStates(decision)) {
        return true;
    }
    const Holders kept = holdersWithState(kKept, decision);
    const Holders rotated = holdersWithState(kRotated, decision);
    return std::none_of(kept.begin(), kept.end(), [&](const SHolder& older) {
        return !older.isExcluded && std::any_of(rotated.begin(), rotated.end(),
                                                [&](const SHolder& newer) { return older.age < newer.age; });
    });
}

bool noMoreIsReleasedThanNeeded(const SDecision& decision) {
    if (!tellsStates(decision)) {
        return true;
    }
    const Holders rotated = holdersWithState(kRotated, decision);
    std::size_t newest = 0;
    for (const SHolder& holder : rotated) {
        newest = std::max(newest, holder.age);
    }
    const auto wasNeeded = [&](const SHolder& holder) {
        Entries others = entriesOf(rotated);
        others.erase(holder.entry);
        return holder.age == newest && !everyConfigurationHasAFreeTarget(others, decision);
    };
    return rotated.empty() || std::any_of(rotated.begin(), rotated.end(), wasNeeded);
}

bool aCallFailsOnlyWhenNothingIsLeftToRelease(const SDecision& decision) {
    if (decision.answer.malformed) {
        return true;
    }
    Entries releasable;
    for (const SHolder& holder : decision.holders) {
        if (!holder.isExcluded && losesNoTarget(holder, decision.holders)) {
            releasable.insert(holder.entry);
        }
    }
    return succeeds(decision) || !everyConfigurationHasAFreeTarget(releasable, decision);
}

bool everyConfigurationGetsItsFirstFreeTarget(const SDecision& decision) {
    if (!tellsStates(decision)) {
        return true;
    }
    const Entries rotated = entriesOf(holdersWithState(kRotated, decision));
    std::string selection;
    for (std::size_t one = 0; one < decision.world.configurations.size(); ++one) {
        const std::optional<std::size_t> target = firstFree(one, rotated, decision);
        if (!target) {
            return false;
        }
        selection += "[" + decision.world.configurations[one].first + ";" +
                     nameOf({one, *target}, decision.world) + "]";
    }
    return decision.answer.selection == selection;
}

bool aBackupThatDisagreesIsInvalid(const SDecision& decision) {
    return !succeeds(decision) ||
           std::none_of(decision.holders.begin(), decision.holders.end(), [&](const SHolder& holder) {
               return holder.agreement == EAgreement::kDisagrees && stateOf(holder, decision) != kInvalid;
           });
}

bool aMalformedIdentifierEndsTheCall(const SDecision& decision) {
    const bool isMalformed =
        std::any_of(decision.holders.begin(), decision.holders.end(),
                    [](const SHolder& holder) { return holder.agreement == EAgreement::kMalformed; });
    return decision.answer.malformed.has_value() == isMalformed;
}

bool aCallThatFailsHandsNothingOver(const SDecision& decision) {
    const SAnswer& answer = decision.answer;
    if (succeeds(decision)) {
        return answer.selection.has_value();
    }
    return (answer.malformed || answer.status == kFailure) && !answer.selection &&
           answer.flags == givenFlags(decision.world);
}

bool onlyBackupsThatWereReadGetAState(const SDecision& decision) {
    if (!succeeds(decision)) {
        return true;
    }
    const std::vector<std::int32_t> given = givenFlags(decision.world);
    for (std::size_t entry = 0; entry < given.size(); ++entry) {
        const std::int32_t flag = decision.answer.flags.at(entry);
        const bool isState = flag == kKept || flag == kInvalid || flag == kRotated;
        const bool wasRead = entry < decision.holders.size();
        if (wasRead ? !isState : flag != given[entry]) {
            return false;
        }
    }
    return true;
}

const std::vector<SRule>& contract() {
    static const std::vector<SRule> kRules = {
        {"aChosenTargetIsHeldByNoKeptBackup", aChosenTargetIsHeldByNoKeptBackup},
        {"anExcludedBackupIsNeverRotated", anExcludedBackupIsNeverRotated},
        {"nothingIsReleasedWhenEveryConfigurationHasAFreeTarget",
         nothingIsReleasedWhenEveryConfigurationHasAFreeTarget},
        {"ofTwoClaimantsTheNewerWins", ofTwoClaimantsTheNewerWins},
        {"aBackupThatLosesNoTargetIsNotInvalid", aBackupThatLosesNoTargetIsNotInvalid},
        {"theOldestAreReleasedFirst", theOldestAreReleasedFirst},
        {"noMoreIsReleasedThanNeeded", noMoreIsReleasedThanNeeded},
        {"aCallFailsOnlyWhenNothingIsLeftToRelease", aCallFailsOnlyWhenNothingIsLeftToRelease},
        {"everyConfigurationGetsItsFirstFreeTarget", everyConfigurationGetsItsFirstFreeTarget},
        {"aBackupThatDisagreesIsInvalid", aBackupThatDisagreesIsInvalid},
        {"aMalformedIdentifierEndsTheCall", aMalformedIdentifierEndsTheCall},
        {"aCallThatFailsHandsNothingOver", aCallThatFailsHandsNothingOver},
        {"onlyBackupsThatWereReadGetAState", onlyBackupsThatWereReadGetAState}};
    return kRules;
}

std::vector<std::string> brokenRules(const SWorld& world, const SAnswer& answer) {
    const SDecision decision{world, answer, holdersOf(world)};
    std::vector<std::string> broken;
    for (const SRule& rule : contract()) {
        if (!rule.holds(decision)) {
            broken.emplace_back(rule.name);
        }
    }
    return broken;
}

}  // namespace fi_model
