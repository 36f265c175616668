#pragma once

#include <cstddef>

namespace fi_rotate {

// Columns of the terminal that `descriptor` is; 80 when it is none or does not tell.
std::size_t widthOfTerminal(int descriptor);

}  // namespace fi_rotate
