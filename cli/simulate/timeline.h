#pragma once

#include <cstddef>
#include <string>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

// Targets as rows and rounds as columns, within `width` columns of a terminal where its names leave that
// much. Rounds that find no room are left out, which it says.
std::string toTimeline(const SSimulation& simulation, std::size_t width);

}  // namespace fi_rotate
