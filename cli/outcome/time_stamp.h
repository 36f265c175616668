#pragma once

#include <vector>

#include "host/outcome.h"

namespace fi_rotate {

// Fills in the time stamp of each loaded backup from its document, as the library reads it: the last
// piece of text before the end of the last timeStamp element that counts for the last top-level Node.
// (The library tells a time stamp only of backups whose targets agree with the configuration; people
// look for the others too.)
void readTimeStamps(std::vector<SBackup>& backups);

}  // namespace fi_rotate
