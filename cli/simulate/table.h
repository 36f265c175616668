#pragma once

#include <cstddef>
#include <string>

#include "cli/simulate/report.h"

namespace fi_rotate {

// The summary for people. Names are cut so that the table fits into `width` columns, but not to less than
// eight characters.
std::string toSummary(const SSimulationReport& report, std::size_t width, bool colour);

}  // namespace fi_rotate
