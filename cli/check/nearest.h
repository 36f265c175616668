#pragma once

#include <cstddef>
#include <string_view>

namespace fi_rotate {

// How many characters must at least be inserted, removed or replaced to make `left` and `right` equal, apart
// from case and white space around them; never more than `limit`.
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit);

// Whether the two have different digits and are otherwise equal, apart from case and white space around them:
// the names of different devices mostly differ like that.
bool differOnlyInDigits(std::string_view left, std::string_view right);

}  // namespace fi_rotate
