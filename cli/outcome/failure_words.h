#pragma once

#include <string>

namespace fi_rotate {

// What a failure in the library's trace means. Empty for one that is reported with more than its line tells:
// of a document that cannot be opened, or of the whole call.
std::string failureInWords(const std::string& traced);

}  // namespace fi_rotate
