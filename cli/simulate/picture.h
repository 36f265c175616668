#pragma once

#include "cli/picture/picture.h"
#include "cli/simulate/simulation.h"

namespace fi_rotate {

// A bar for each snapshot, from its taking to its end. Of rounds without a target only the first few are
// shown.
SPicture pictureOf(const SSimulation& simulation);

}  // namespace fi_rotate
