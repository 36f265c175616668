#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/simulate/simulation.h"
#include "cli/simulate/target_search.h"

namespace fi_rotate {

// In seconds; the median of an even number lies half-way between the two in the middle.
struct SAges {
    std::int64_t minimum = 0;
    std::int64_t median = 0;
    std::int64_t maximum = 0;
};

// What many rounds came to for one configuration.
struct SConfigurationSummary {
    std::string first;
    std::size_t targets = 0;
    // Snapshots that were there before the first round, and those that the rounds took.
    std::size_t takenOver = 0;
    std::size_t taken = 0;
    std::size_t rotated = 0;
    std::size_t lost = 0;
    std::size_t held = 0;
    // Of snapshots when they were rotated; nothing when none was.
    std::optional<SAges> ages;
    SFewestKept fewestKept;
    // Rounds in which this configuration was short.
    std::size_t roundsShort = 0;
    // The first of them, and who held its targets then; none when it was never short. No holders when it has
    // no further targets.
    std::size_t firstShort = 0;
    std::vector<SHeldByRound> holders;
};

std::vector<SConfigurationSummary> summarise(const SSimulation& simulation);

// A shortage as a sentence without a full stop: "all 10 targets are held by excluded backups".
std::string shortageInWords(const std::vector<SHeldByRound>& holders);

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
