#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "host/outcome.h"

// Totals of the backups of an outcome.
namespace fi_rotate {

struct STotals {
    // By state, in the order of kStateWords.
    std::array<std::size_t, kStateWords.size()> ofState{};
    // Backups without a state: the library returned none, or a log does not tell it.
    std::size_t withoutState = 0;
    // Rotated backups that held no target of a configuration that was short.
    std::size_t inVain = 0;
};

STotals totalsOf(const SOutcome& outcome);

// How many restore points a configuration has: kept backups that hold one of its targets.
struct SRestorePoints {
    std::size_t before = 0;
    // After the call and before the new snapshot is taken.
    std::size_t after = 0;

    // Whether nothing could be restored if the new snapshot failed.
    [[nodiscard]] bool areAllGone() const { return before != 0 && after == 0; }
};

// One for each configuration, in the order of the call; empty when the trace does not contain the
// information.
std::vector<SRestorePoints> restorePointsOf(const SOutcome& outcome);

// The first targets of the configurations whose restore points are all gone.
std::vector<std::string> withoutRestorePoints(const SOutcome& outcome);

}  // namespace fi_rotate
