#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "cli/explain/log.h"
#include "cli/outcome/advice.h"
#include "cli/outcome/view.h"
#include "host/outcome.h"

namespace fi_rotate {

// The outcome for people: the selection, then a row for each backup that `view` shows, or a list where a row
// would be longer than `width` columns; nothing is cut. With `colour`, states are coloured as well as named.
// What to do when no target is free comes first.
std::string toTables(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice,
                     std::size_t width, bool colour);

// The same of a call in a log, with where it stands there, what the library told, and what is missing.
std::string toTables(const SLoggedCall& call, const SView& view, std::size_t width, bool colour);

}  // namespace fi_rotate
