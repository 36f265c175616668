#pragma once

#include <string>

#include "cli/simulation_report.h"

namespace fi_rotate {

// The summary for people.
std::string toSummary(const SSimulationReport& report, bool colour);

}  // namespace fi_rotate
