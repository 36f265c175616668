#pragma once

#include <string>

#include "cli/outcome.h"

namespace fi_rotate {

// The outcome as one JSON document with a line end.
std::string toJson(const SOutcome& outcome);

}  // namespace fi_rotate
