#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "cli/goal.h"
#include "cli/simulation.h"
#include "cli/simulation_summary.h"

namespace fi_rotate {

// What every form of output of `simulate` shows.
struct SSimulationReport {
    SSimulation simulation;
    // One for each configuration.
    std::vector<SConfigurationSummary> summaries;
    // In seconds.
    std::optional<std::int64_t> goal;
    // One for each configuration when there is a goal.
    std::vector<SLeastTargets> leastTargets;
};

}  // namespace fi_rotate
