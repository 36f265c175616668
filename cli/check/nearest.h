#pragma once

#include <cstddef>
#include <string_view>

namespace fi_rotate {

// The fewest characters to be put in, taken out or replaced that makes `left` and `right` alike but
// for case and for white space around them, or `limit` when that is less.
std::size_t distance(std::string_view left, std::string_view right, std::size_t limit);

}  // namespace fi_rotate
