#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/call.h"
#include "host/outcome.h"

// What to do when no target is free. Nothing is guessed: each change is tried by the call that it leads to.
namespace fi_rotate {

enum class EChange {
    // Allow rotation of a backup that is excluded.
    kAllowRotation,
    // Leave a backup that is invalid, and so never released, out of the call: it must be given up first.
    kLeaveOut,
};

struct SChange {
    EChange kind = EChange::kAllowRotation;
    // Of the backup.
    std::string file;
};

// A change to the inputs of the call, and what the call came to with it.
struct STrial {
    SChange change;
    // The backups that are released then; nothing when there is no selection even so.
    std::optional<std::vector<std::string>> released;
};

struct SAdvice {
    // Each backup that holds a target of a configuration that is short.
    std::vector<STrial> trials;
    // Holders beyond the number that is tried.
    std::size_t untried = 0;
    // The changes that lead to a selection without another target, as few as one at a time finds, and of one
    // change the one that costs the fewest backups; empty when there are none.
    std::vector<SChange> wayOut;
    // The backups that are released on that way.
    std::vector<std::string> released;
    // The backups that are released when each configuration that is short has one target more instead;
    // nothing when that is no way out either.
    std::optional<std::vector<std::string>> releasedWithTargets;
};

// Makes a call, with its account, without any effect but its outcome.
using MakeCall = std::function<SOutcome(const SCall& call)>;

// Of a call whose outcome, with its account, has no selection because targets are short.
SAdvice adviseOn(const SCall& call, const SOutcome& outcome, const MakeCall& makeCall);

}  // namespace fi_rotate
