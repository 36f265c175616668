#pragma once

#include "cli/picture/picture.h"
#include "cli/simulate/simulation.h"

namespace fi_rotate {

// A bar for each snapshot, from the time when it was taken to the time when it ended. Of many rounds only the
// last are shown, of the rounds without a target at the end only the first few.
SPicture pictureOf(const SSimulation& simulation);

}  // namespace fi_rotate
