#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/explain/log.h"
#include "cli/outcome/advice.h"
#include "cli/outcome/view.h"
#include "host/outcome.h"

namespace fi_rotate {

// What `view` shows of the outcome, as one JSON document with a line end; with what to do, when no target is
// free.
std::string toJson(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice);

// The same of the calls of a log.
std::string toJson(const std::vector<SLoggedCall>& calls, const SView& view);

}  // namespace fi_rotate
