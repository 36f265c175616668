#pragma once

#include <string>

#include "cli/outcome.h"

namespace fi_rotate {

// The outcome for people: the selection, then a row for each backup. Columns are as wide as their
// longest text; nothing is cut. With `colour`, states are coloured as well as named.
std::string toTables(const SOutcome& outcome, bool colour);

}  // namespace fi_rotate
