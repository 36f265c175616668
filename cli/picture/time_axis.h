#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cli/picture/picture.h"

namespace fi_rotate {

// At most `most` ticks from `from` to `to` at full steps of the calendar (hours, days, weeks, months), each
// with its label.
std::vector<STick> timeTicks(std::int64_t from, std::int64_t to, std::size_t most);

}  // namespace fi_rotate
