#pragma once

#include <string_view>

namespace fi_rotate {

inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

}  // namespace fi_rotate
