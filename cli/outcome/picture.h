#pragma once

#include "cli/picture/picture.h"
#include "host/outcome.h"

namespace fi_rotate {

// A picture with a bar for each target that a backup names. The bar begins at the time stamp of the backup.
// If the call rotated the backup it ends at the edge of the picture, otherwise it is drawn as going on. The
// outcome must have its account and its time stamps. Without a selection no bar is rotated, and the
// configurations that are short are named.
SPicture pictureOf(const SOutcome& outcome);

}  // namespace fi_rotate
