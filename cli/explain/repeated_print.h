#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fi_rotate {

// A call with a selection prints the configurations and the tree of each document twice, before and after the
// decision, with the same names. So lines that were lost from the first print, which explains the decision,
// are noticed by the second one.
class CRepeatedPrint {
public:
    // `isDecided`: whether the line stands behind the decision.
    void read(std::string_view text, bool isDecided);

    // Whether the second print has lines that the first one lacks.
    [[nodiscard]] bool isFirstIncomplete() const { return isIncomplete; }

private:
    // The hash of each line, in order.
    using Lines = std::vector<std::size_t>;

    void begin(std::string_view text, bool isDecided);
    void compare(std::size_t line);

    // By the name of the document; the configurations have no name.
    std::unordered_map<std::string, Lines> first;
    // Those of the list that is being read; null outside a list.
    Lines* lines = nullptr;
    // The next of `lines` to be compared with; nothing while the first print is read.
    std::optional<std::size_t> next;
    bool isIncomplete = false;
};

}  // namespace fi_rotate
