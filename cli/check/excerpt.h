#pragma once

#include <cstddef>
#include <string>

#include "cli/check/findings.h"

namespace fi_rotate {

struct SShownExcerpt {
    // Printable.
    std::string line;
    // Columns before the place in it.
    std::size_t caret = 0;
};

// The excerpt of `spot` in at most `width` columns, and no more than are easily read: the word at the place
// and what fits around it, with dots where the line goes on.
SShownExcerpt showExcerpt(const SSpot& spot, std::size_t width);

}  // namespace fi_rotate
