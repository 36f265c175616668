#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

enum class ESearch {
    // So many targets are the least.
    kFound,
    // However many targets, it is not met.
    kNever,
    // Exclusions that never end take target after target: the more rounds, the more targets it takes.
    kNoLimit,
    // Somebody stopped it.
    kStopped,
};

struct SLeastTargets {
    ESearch search = ESearch::kStopped;
    std::size_t targets = 0;
};

// Asked before each round of the search with the number of targets on trial and the rounds done of `plan`;
// false stops it.
using GoOnSearch = std::function<bool(std::size_t targets, std::size_t rounds)>;

// The fewest targets with which the rounds of `plan`, run with this configuration alone, all find a
// target and rotate no snapshot that is younger than `goal` seconds. No backup is there before the first
// round: fewer targets than there are could not hold it.
//
// Fewer targets than it has are its first ones; more are its own and invented ones. The number is doubled
// until the goal is met, then halved in: a target more lets each snapshot live a round longer and moves the
// first round without a target later, so with the fewest targets any larger number meets the goal too.
SLeastTargets leastTargets(const SPlan& plan, const SAccountConfiguration& configuration, std::int64_t goal,
                           const GoOnSearch& goOn);

// So many rounds it takes until all that is to be kept for a time is there at once, whichever rounds are
// excluded: with more of them the fewest targets are the same. Nothing when there is no such number.
std::optional<std::size_t> roundsUntilSettled(const SPlan& plan, std::int64_t goal);

}  // namespace fi_rotate
