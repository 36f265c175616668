#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/CFiDocumentLimits.h"
#include "host/call.h"
#include "host/host.h"
#include "host/library_call.h"
#include "host/outcome.h"

// A call of the library that decides only when all its inputs are whole.
namespace fi_rotate {

struct SSafety {
    // A sum of values of fi_rotation_problem.
    std::uint32_t permitted = 0;
    // The largest document that is read.
    std::uint64_t mostBytes = CFiDocumentLimits::kMostBytes;
    // How many backups each configuration must keep; one that has fewer may not lose any.
    std::size_t leastKept = 0;
};

struct SProblem {
    // A value of fi_rotation_problem.
    std::uint32_t kind = 0;
    // Its index in the call; nothing for the configuration.
    std::optional<std::size_t> backup;
    std::string text;
};

struct STargetOfDecision {
    // ENCLOSURE##DEVICE.
    std::string name;
    // The index in the call of the backup that holds it at the end; nothing when it is free.
    std::optional<std::size_t> holder;
};

struct SConfigurationOfDecision {
    std::string first;
    std::optional<std::string> chosen;
    // Kept backups that hold one of its targets; nothing when not asked for.
    std::optional<std::size_t> kept;
    std::vector<STargetOfDecision> targets;
};

struct SDecision {
    fi_rotation_outcome kind = FI_ROTATION_FAILED;
    // The decision in words, for people.
    std::string message;
    std::vector<SProblem> problems;
    // As many backups as the call has when the inputs are whole; states and a selection only with
    // FI_ROTATION_SELECTED.
    SOutcome outcome;
    std::vector<SConfigurationOfDecision> configurations;
};

// Throws std::bad_alloc when memory ran out; std::runtime_error for an exception of the library that is not
// about an identifier, such as an XML library that cannot be set up; what the sink of the trace throws; and
// what CProcessLock does.
SDecision decideSafely(const SCall& call, const SWishes& wishes, const SSafety& safety);

}  // namespace fi_rotate
