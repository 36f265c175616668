#pragma once

#include <string>
#include <vector>

#include "tests/model/Answer.h"
#include "tests/model/Holdings.h"
#include "tests/model/World.h"

// What must be true of every call, whoever answers it: what hosts and their users rely on, in their words. It
// is judged by the facts of the world and by the answer, and not by what a call does on its way, so that a
// mistake that the library and its model share is found too.
//
// States are told by the flag words of a call that succeeds, where no name is listed twice: else one flag
// word stands for two backups and tells the state of either. What is said of single states is not judged
// otherwise.

namespace fi_model {

// A world, what was answered, and who holds what.
struct SDecision {
    const SWorld& world;
    const SAnswer& answer;
    Holders holders;
};

// Who holds a chosen target is not kept, where each target is named once in the configuration: a backup holds
// one place of a target that is named twice, and the other place of the same target is free.
bool aChosenTargetIsHeldByNoKeptBackup(const SDecision& decision);

// An excluded backup is never rotated; of a name that is listed twice the last flag word says whether it is
// excluded.
bool anExcludedBackupIsNeverRotated(const SDecision& decision);

// Where every configuration has a target that no backup holds, the call succeeds and rotates none.
bool nothingIsReleasedWhenEveryConfigurationHasAFreeTarget(const SDecision& decision);

// Of two backups that hold a target the older one is invalid; of two of the same age at least one is, and
// nothing says which.
bool ofTwoClaimantsTheNewerWins(const SDecision& decision);

// A backup that agrees with the configuration, holds its targets alone or as the newest, and none of them
// twice, is not invalid. (A second pair of the same target finds it used.)
bool aBackupThatLosesNoTargetIsNotInvalid(const SDecision& decision);

// A backup that is older than a rotated one is not kept, unless it is excluded; of two of the same age
// nothing says which is released first.
bool theOldestAreReleasedFirst(const SDecision& decision);

// Without the newest of the rotated backups, or one of the newest when several are of the same age, some
// configuration would have no free target. Older ones may have been released in vain, since age alone decides
// the order.
bool noMoreIsReleasedThanNeeded(const SDecision& decision);

// A call fails only where some configuration has no free target even without all backups that may be rotated:
// those that lose no target and are not excluded. What a loser of another target holds stays in use.
bool aCallFailsOnlyWhenNothingIsLeftToRelease(const SDecision& decision);

// The selection names for each configuration, in order, its first target and the first of its targets that
// nobody holds or whose newest holder was rotated.
bool everyConfigurationGetsItsFirstFreeTarget(const SDecision& decision);

// A backup with a pair that is not configured is invalid, unless a pair before that is malformed.
bool aBackupThatDisagreesIsInvalid(const SDecision& decision);

// A malformed identifier in a document that is read, of a pair before which all pairs are configured, ends
// the call with an exception, and nothing else does.
bool aMalformedIdentifierEndsTheCall(const SDecision& decision);

// A call without a selection fails with status 3 or an exception and leaves all flag words as they were.
bool aCallThatFailsHandsNothingOver(const SDecision& decision);

// A call that succeeds gives each backup that was read a state, and leaves the flag words of a missing file
// and of all after it as they were; a file missing in the middle hides the later ones, also if they hold
// targets.
bool onlyBackupsThatWereReadGetAState(const SDecision& decision);

struct SRule {
    const char* name;
    bool (*holds)(const SDecision& decision);
};

// All of the above.
const std::vector<SRule>& contract();

// The names of those that do not hold.
std::vector<std::string> brokenRules(const SWorld& world, const SAnswer& answer);

}  // namespace fi_model
