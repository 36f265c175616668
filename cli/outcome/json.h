#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/explain/log.h"
#include "cli/outcome/advice.h"
#include "cli/outcome/view.h"
#include "host/outcome.h"

namespace fi_rotate {

// The outcome as one JSON document with a line end: what `view` shows of it, and the advice if there is any.
std::string toJson(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice);

// The same for the calls of a log.
std::string toJson(const std::vector<SLoggedCall>& calls, const SView& view);

}  // namespace fi_rotate
