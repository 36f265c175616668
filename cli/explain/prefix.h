#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fi_rotate {

// What a host writes before a message: times, levels, names and numbers.
struct SPrefix {
    // What all lines of one format have in common: each time and each word is replaced by one character,
    // levels are removed, and blanks are kept only between words.
    std::string shape;
    // The words that were replaced in the shape, without the times. They are borrowed from the prefix, as
    // `time` is.
    std::vector<std::string_view> words;
    // The first time in the prefix, as it is written there; empty when there is none.
    std::string_view time;
    // How many blanks it ends with. Blanks that a message begins with are not counted.
    std::size_t blanks = 0;
};

SPrefix prefixOf(std::string_view text);

bool hasTime(std::string_view shape);

// For each word of the prefixes with this shape, whether it stands in brackets behind another word, as the
// process in "name[123]:".
std::vector<bool> areProcessesIn(std::string_view shape);

}  // namespace fi_rotate
