#pragma once

#include <string>
#include <vector>

#include "cli/explain/log.h"
#include "host/outcome.h"

namespace fi_rotate {

// The outcome as one JSON document with a line end.
std::string toJson(const SOutcome& outcome);

// The same of the calls of a log.
std::string toJson(const std::vector<SLoggedCall>& calls);

}  // namespace fi_rotate
