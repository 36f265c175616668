#pragma once

#include <cstddef>

namespace fi_rotate {

// Columns of the terminal that `descriptor` is; 80 when it is none or does not tell.
std::size_t widthOfTerminal(int descriptor);

// Columns that a line on standard output should keep to: those of the terminal; as many as it needs in a
// file.
std::size_t widthOfOutput();

}  // namespace fi_rotate
