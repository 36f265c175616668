#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace fi_rotate {

// Finds the library's texts in the lines of a log. Most of them name the operation that they come from; what
// stands before such a name is the host's prefix (time, process, level). The others are known by their form,
// behind a prefix that looks like one of those.
class CLogText {
public:
    // The library's text in `line`, which is without its line end; nothing when there is none. Line breaks
    // are put back in where fi-rotate wrote the line.
    std::optional<std::string> find(std::string_view line);

private:
    [[nodiscard]] std::optional<std::string_view> findUnnamed(std::string_view line) const;

    std::set<std::string> prefixShapes;
    std::size_t longestPrefix = 0;
};

}  // namespace fi_rotate
