#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

enum class ESearch {
    // `targets` is the fewest with which the goal is met.
    kFound,
    // The configuration names a target twice, and so loses snapshots, however many targets it has and
    // whatever is excluded.
    kNever,
    // Exclusions that never end keep one target after another: the more rounds, the more targets are needed.
    kNoLimit,
    // The search was stopped before the number was known.
    kStopped,
};

struct SFewestTargets {
    ESearch search = ESearch::kStopped;
    std::size_t targets = 0;
};

// Called before each round of the search with the number of targets that is tried and the finished rounds of
// `plan`. Returns whether to go on.
using ContinueSearchCallback = std::function<bool(std::size_t targets, std::size_t rounds)>;

// The fewest targets with which the rounds of `plan`, run with this configuration alone, all find a
// target and rotate no snapshot that is younger than `goal` seconds. SPlan::from must be empty: the fewer
// targets that are tried may not be those that the earlier backups hold.
//
// Fewer targets than it has are its first ones; more are its own and invented ones. The number is doubled
// until the goal is met; then the fewest is found by bisection. That is correct because one more target lets
// each snapshot live a round longer and moves the first round without a target later, so that every number
// above the fewest meets the goal too.
SFewestTargets findFewestTargets(const SPlan& plan, const SAccountConfiguration& configuration,
                                 std::int64_t goal, const ContinueSearchCallback& mayContinue);

// The number of rounds after which the number of targets in use no longer grows, whichever rounds are
// excluded: more rounds need no more targets. Nothing when it grows for ever, because exclusions never end.
std::optional<std::size_t> roundsUntilSettled(const SPlan& plan, std::int64_t goal);

}  // namespace fi_rotate
