#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/picture/picture.h"

namespace fi_rotate {

// Where all targets are known, counts those that are free and puts the configurations first that need
// attention. Leaves out what nobody would take in and some programs would refuse to draw: several
// free targets in a row become one row; of many configurations the first are drawn whole, of some more the
// chosen target only, and the others are counted. The picture says so.
void arrange(SPicture& picture);

// Printable, and cut where it is too long for a name in a picture.
std::string asName(const std::string& name);

// "1 thing", "2 things".
std::string countInWords(std::size_t count, std::string_view thing);

// "a, b, c and 3 more".
std::string someOf(const std::vector<std::string>& names);

}  // namespace fi_rotate
