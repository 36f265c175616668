#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace fi_rotate {

// What a logger has put in place of the tabs that a line of a document's tree begins with: control characters
// are not written into some logs.
struct SReplacedTabs {
    // Bytes.
    std::size_t length = 0;
    // They can be nothing else: "#011", "\\t" and so on. What else stands there may be the host's own.
    bool isCertain = false;
};

// Nothing when `text` is no line of a tree whose tabs were replaced.
std::optional<SReplacedTabs> replacedTabs(std::string_view text);

}  // namespace fi_rotate
