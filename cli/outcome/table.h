#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "cli/explain/log.h"
#include "cli/outcome/advice.h"
#include "cli/outcome/view.h"
#include "host/outcome.h"

namespace fi_rotate {

// The outcome for people: the advice, if there is any, the selection, and a row for each backup that `view`
// shows. Where rows would be longer than `width` columns, lists replace them; nothing is cut. With `colour`,
// states are coloured too.
std::string toTables(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice,
                     std::size_t width, bool colour);

// The same for a call in a log, with its position there, the messages of the library, and what is missing.
std::string toTables(const SLoggedCall& call, const SView& view, std::size_t width, bool colour);

}  // namespace fi_rotate
