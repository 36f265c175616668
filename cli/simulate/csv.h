#pragma once

#include <string>
#include <string_view>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

// A heading and a line for each round: its number and time, whether it was excluded, the backups that it
// ended, by their rounds and those that were there before by d1, d2 and so on, and what it took of each
// configuration.
std::string toCsv(const SSimulation& simulation);

// Whether a file with this text is such a table.
bool isOwnTable(std::string_view text);

}  // namespace fi_rotate
