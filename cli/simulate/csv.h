#pragma once

#include <string>
#include <string_view>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

// A heading and a line for each round: its number and time, whether its backup is excluded, whether there was
// a selection, the backups that it rotated and lost, and the target that it took of each configuration. A
// backup is named by its round; a backup that existed before the first round by d1, d2 and so on.
std::string toCsv(const SSimulation& simulation);

// Whether `text` is a table that simulate wrote.
bool isOwnTable(std::string_view text);

}  // namespace fi_rotate
