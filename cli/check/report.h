#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/check/findings.h"
#include "cli/check/folding.h"

namespace fi_rotate {

SCounts countAll(const std::vector<CFindings>& inputs);

// A line for each finding, with the line of the input under it where that can be shown, and one that counts
// all. What follows from other findings, or repeats them, is told in a line under those. `inputs` are those
// of checkCall; lines of the input keep to `width` columns.
std::string toText(const std::vector<CFindings>& inputs, std::size_t width, bool colour);

// The same as one JSON document with a line end.
std::string toJson(const std::vector<CFindings>& inputs);

}  // namespace fi_rotate
