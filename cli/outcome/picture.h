#pragma once

#include "cli/picture/picture.h"
#include "host/outcome.h"

namespace fi_rotate {

// A bar for each target that a backup names, from its time stamp on: to the end of a picture if the call
// rotated it, and otherwise beyond. The outcome has its account and its time stamps. Without a selection,
// where no state is handed back, nothing is rotated, and the configurations that are short are named.
SPicture pictureOf(const SOutcome& outcome);

}  // namespace fi_rotate
