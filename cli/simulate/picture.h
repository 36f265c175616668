#pragma once

#include "cli/picture/picture.h"
#include "cli/simulate/simulation.h"

namespace fi_rotate {

// A bar for each snapshot, from its taking to its end. Of many rounds the last are shown, of rounds without a
// target the first few.
SPicture pictureOf(const SSimulation& simulation);

}  // namespace fi_rotate
