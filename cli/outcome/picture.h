#pragma once

#include "cli/picture/picture.h"
#include "host/outcome.h"

namespace fi_rotate {

// A bar for each target that a backup names, from its time stamp to the newest of all and, unless it was
// rotated, on. The outcome has its account and its time stamps. Where a time stamp is no time of the usual
// form, the axis shows their order as texts instead, which is what the library goes by.
SPicture pictureOf(const SOutcome& outcome);

}  // namespace fi_rotate
