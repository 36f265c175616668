#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cli/picture/picture.h"

namespace fi_rotate {

// At most `most` round times from `from` to `to`, each with a label of its own.
std::vector<STick> timeTicks(std::int64_t from, std::int64_t to, std::size_t most);

}  // namespace fi_rotate
