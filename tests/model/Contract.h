#pragma once

#include <string>
#include <vector>

#include "tests/model/Answer.h"
#include "tests/model/Holdings.h"
#include "tests/model/World.h"

// What must be true of every call: the rules that hosts and their users rely on, in their words. A rule looks
// only at the facts of the world and at the answer, and not at the steps of a call, so that a mistake that
// the library and its model share is found, too.
//
// The flag words tell the states of backups only when a call succeeds and no name is listed twice, since one
// flag word would then stand for two backups. Rules about single states are applied to such calls only.

//
// A backup holds a target here when its document agrees with the configuration and names it, so that two
// backups can hold one target. Which of them claimed it is for the rules to say.

namespace fi_model {

// A world, what was answered, and who holds what.
struct SDecision {
    const SWorld& world;
    const SAnswer& answer;
    Holders holders;
};

// A backup that holds a chosen target is not kept. This holds where the configuration names each target once:
// of a target that is named twice, a backup holds one entry, and the other one is free.
bool aChosenTargetIsHeldByNoKeptBackup(const SDecision& decision);

// An excluded backup is never rotated. When a name is listed twice, its last flag word says whether both are
// excluded.
bool anExcludedBackupIsNeverRotated(const SDecision& decision);

// When every configuration has a target that no backup holds, the call succeeds and rotates no backup.
bool nothingIsReleasedWhenEveryConfigurationHasAFreeTarget(const SDecision& decision);

// Of two backups that hold the same target the older one is invalid. When they have the same age at least one
// of them is; which one is not specified.
bool ofTwoClaimantsTheNewerWins(const SDecision& decision);

// A backup is not invalid when it agrees with the configuration, no backup of the same age or newer holds one
// of its targets, and no two of its pairs name the same target.
bool aBackupThatLosesNoTargetIsNotInvalid(const SDecision& decision);

// A backup that is older than a rotated one is not kept, unless it is excluded. Which of two backups of the
// same age is released first is not specified.
bool theOldestAreReleasedFirst(const SDecision& decision);

// If the newest of the rotated backups were kept (or, of several with that age, one), some configuration
// would have no free target. The release of an older one need not have helped, because age alone decides the
// order.
bool noMoreIsReleasedThanNeeded(const SDecision& decision);

// A call fails only when some configuration has no free target even after the release of all backups that may
// be rotated: those that lose no target and are not excluded. The targets of a backup that loses one of them
// stay in use.
bool aCallFailsOnlyWhenNothingIsLeftToRelease(const SDecision& decision);

// The selection names for each configuration, in order, its first target and the first of its further targets
// that no backup holds or whose newest holder was rotated.
bool everyConfigurationGetsItsFirstFreeTarget(const SDecision& decision);

// A backup with a pair that is not configured is invalid, unless a pair before that is malformed.
bool aBackupThatDisagreesIsInvalid(const SDecision& decision);

// A malformed identifier in a document that is read ends the call with an exception, when all pairs before it
// are configured. Nothing else ends a call with an exception.
bool aMalformedIdentifierEndsTheCall(const SDecision& decision);

// A call without a selection fails with status 3 or an exception and leaves all flag words as they were.
bool aCallThatFailsHandsNothingOver(const SDecision& decision);

// A call that succeeds gives a state to each backup that was read, and leaves the flag words of a missing
// file and of all files after it as they were: these are ignored, even if they hold targets.
bool onlyBackupsThatWereReadGetAState(const SDecision& decision);

struct SRule {
    const char* name;
    bool (*holds)(const SDecision& decision);
};

// All of the above.
const std::vector<SRule>& contract();

// The names of the rules that the answer breaks.
std::vector<std::string> brokenRules(const SWorld& world, const SAnswer& answer);

}  // namespace fi_model
