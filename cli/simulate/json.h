#pragma once

#include <string>

#include "cli/simulate/report.h"

namespace fi_rotate {

// The summary as one JSON document with a line end.
std::string toJson(const SSimulationReport& report);

}  // namespace fi_rotate
