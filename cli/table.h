#pragma once

#include <string>

#include "cli/log.h"
#include "cli/outcome.h"

namespace fi_rotate {

// The outcome for people: the selection, then a row for each backup. Columns are as wide as their
// longest text; nothing is cut. With `colour`, states are coloured as well as named.
std::string toTables(const SOutcome& outcome, bool colour);

// The same of a call in a log, with where it stands there, what the library told, and what is missing.
std::string toTables(const SLoggedCall& call, bool colour);

}  // namespace fi_rotate
