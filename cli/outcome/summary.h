#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "host/outcome.h"

// What the rows of an outcome add up to.
namespace fi_rotate {

struct STotals {
    // By state, in the order of kStateWords.
    std::array<std::size_t, kStateWords.size()> ofState{};
    // The library handed no states back.
    std::size_t withoutState = 0;
    // Of those that were rotated, without freeing anything of a configuration that was short.
    std::size_t inVain = 0;
};

STotals totalsOf(const SOutcome& outcome);

// How many backups a configuration can be restored from: those that are kept and hold one of its targets.
struct SRestorePoints {
    std::size_t before = 0;
    // Until the new snapshot is taken.
    std::size_t after = 0;

    // A failure of the new snapshot would leave nothing to restore from.
    [[nodiscard]] bool areAllGone() const { return before != 0 && after == 0; }
};

// By configuration, in the order of the call; empty when the trace does not tell.
std::vector<SRestorePoints> restorePointsOf(const SOutcome& outcome);

// The first targets of the configurations whose restore points are all gone.
std::vector<std::string> withoutRestorePoints(const SOutcome& outcome);

}  // namespace fi_rotate
