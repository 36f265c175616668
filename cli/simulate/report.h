#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/simulate/simulation.h"
#include "cli/simulate/target_search.h"

namespace fi_rotate {

// In seconds. The median of an even number of ages is half-way between the two in the middle.
struct SAges {
    std::int64_t minimum = 0;
    std::int64_t median = 0;
    std::int64_t maximum = 0;
};

// The results of all rounds for one configuration.
struct SConfigurationSummary {
    std::string first;
    std::size_t targets = 0;
    // How many snapshots existed before the first round, and how many the rounds took.
    std::size_t takenOver = 0;
    std::size_t taken = 0;
    std::size_t rotated = 0;
    std::size_t lost = 0;
    std::size_t held = 0;
    // The ages of snapshots when they were rotated; nothing when none was.
    std::optional<SAges> ages;
    SFewestKept fewestKept;
    // Rounds in which this configuration was short.
    std::size_t roundsShort = 0;
    // The first of these rounds, or 0, and the backups that held the targets then. There are no holders when
    // the configuration has no further targets.
    std::size_t firstShort = 0;
    std::vector<SHeldByRound> holders;
};

std::vector<SConfigurationSummary> summarise(const SSimulation& simulation);

// "7", or of several rounds "7 to 9".
std::string shownRounds(std::size_t first, std::size_t last);

// A shortage as a sentence without a full stop: "all 10 targets are held by excluded backups".
std::string shortageInWords(const std::vector<SHeldByRound>& holders);

// The data that all outputs of `simulate` show.
struct SSimulationReport {
    SSimulation simulation;
    // One for each configuration.
    std::vector<SConfigurationSummary> summaries;
    // In seconds.
    std::optional<std::int64_t> goal;
    // One for each configuration when there is a goal.
    std::vector<SFewestTargets> fewestTargets;
};

}  // namespace fi_rotate
