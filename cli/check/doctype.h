#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace fi_rotate {

// Where the DOCTYPE of `document` begins.
std::optional<std::size_t> doctypeIn(std::string_view document);

}  // namespace fi_rotate
