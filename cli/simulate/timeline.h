#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

// The letter of each snapshot of SSimulation::snapshots, the same for those of one backup.
std::vector<char> lettersOf(const SSimulation& simulation);

// Targets as rows and rounds as columns, within `width` columns of a terminal if its names leave room. Rounds
// that do not fit are not shown, and the heading says so.
std::string toTimeline(const SSimulation& simulation, std::size_t width);

}  // namespace fi_rotate
