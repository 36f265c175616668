#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace fi_rotate {

// What a logger has put in place of the tabs that a line of a document's tree begins with: control characters
// are not written into some logs.
struct SReplacedTabs {
    // Bytes.
    std::size_t length = 0;
    // They can be nothing else: "#011", "\\t" and so on. What else stands there may be the host's own.
    bool isCertain = false;
};

// Finds them in one line.
class CReplacedTabs {
public:
    // `text` is borrowed.
    explicit CReplacedTabs(std::string_view text);

    // Those that begin at `begin`; nothing when no line of a tree whose tabs were replaced begins there.
    [[nodiscard]] std::optional<SReplacedTabs> at(std::size_t begin) const;

private:
    std::string_view line;
    // Where the text of a top-level Node may begin, in order.
    std::vector<std::size_t> nodes;
};

}  // namespace fi_rotate
