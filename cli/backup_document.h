#pragma once

#include <string>
#include <vector>

#include "cli/outcome.h"

namespace fi_rotate {

// The document of a backup that took its snapshots on the chosen targets, as a host writes it: a Node with
// the time stamp, and in it one Node for each configuration. Throws std::invalid_argument when a name cannot
// stand in a document in one piece, without which the library would read another name.
std::string toDocument(const std::string& timeStamp, const std::vector<SChoice>& choices);

}  // namespace fi_rotate
