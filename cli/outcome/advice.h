#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/call.h"
#include "host/outcome.h"

// What to do when no target is free. Each change is tried: a call is made with it.
namespace fi_rotate {

enum class EChange {
    // Allow rotation of a backup that is excluded.
    kAllowRotation,
    // Leave a backup out of the call because it is invalid and so never released. Its user must give it up
    // first.
    kLeaveOut,
};

struct SChange {
    EChange kind = EChange::kAllowRotation;
    // Of the backup.
    std::string file;
};

// A change to the inputs of the call, and the outcome of the call with this change.
struct STrial {
    SChange change;
    // The backups that are released with the change; nothing when there is still no selection.
    std::optional<std::vector<std::string>> released;
};

struct SAdvice {
    // Each backup that holds a target of a configuration that is short.
    std::vector<STrial> trials;
    // How many such backups were not tried, because there are too many.
    std::size_t untried = 0;
    // Changes that lead to a selection although no target is added: the trial that releases the fewest
    // backups, or several changes where none of the trials is enough. Empty only when no change is enough:
    // then a configuration has no targets at all.
    std::vector<SChange> neededChanges;
    // The backups that are released with these changes.
    std::vector<std::string> released;
    // The backups that are released when each configuration that is short gets one more target instead;
    // nothing when that gives no selection either.
    std::optional<std::vector<std::string>> releasedWithTargets;
};

// Makes a call, which changes nothing, and returns its outcome with its account.
using MakeCall = std::function<SOutcome(const SCall& call)>;

// The advice for a call that has no selection because configurations are short. `outcome` must have an
// account.
SAdvice adviseOn(const SCall& call, const SOutcome& outcome, const MakeCall& makeCall);

}  // namespace fi_rotate
