#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/picture/picture.h"

namespace fi_rotate {

// Where all targets are known, counts the free ones and puts the configurations first that need attention.
// Shortens a picture that would be too large for people or for the programs that draw it: several free
// targets after one another become one row; of many configurations the first are drawn completely, some more
// only with the chosen target, and the others are counted. The picture says so.
void sortAndShorten(SPicture& picture);

// Printable, and cut where it is too long for a name in a picture.
std::string asName(const std::string& name);

// "1 thing", "2 things".
std::string countInWords(std::size_t count, std::string_view thing);

// "a, b, c and 3 more".
std::string someOf(const std::vector<std::string>& names);

}  // namespace fi_rotate
