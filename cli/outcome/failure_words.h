#pragma once

#include <string>
#include <vector>

#include "host/outcome.h"

namespace fi_rotate {

// What a line that the library traced for a failure means, in words for people. Empty for failures that are
// shown in another way: a document that cannot be opened, and no free target.
std::string failureInWords(const std::string& traced);

// The messages of `outcome` in words for people, without those that are empty.
std::vector<std::string> messagesInWords(const SOutcome& outcome);

}  // namespace fi_rotate
