#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fi_rotate {

// What a host writes before a message: times, levels, names and numbers.
struct SPrefix {
    // What all lines of one format have in common: each time and each word stands as one character, levels
    // are left out, and blanks count between words only.
    std::string shape;
    // The words that the shape stands for, but for times. They are borrowed from the prefix, as `time` is.
    std::vector<std::string_view> words;
    // As it stands there; of several the first. Empty when there is none.
    std::string_view time;
    // How many blanks it ends with: those of a message's own begin behind them.
    std::size_t blanks = 0;
};

SPrefix prefixOf(std::string_view text);

bool hasTime(std::string_view shape);

}  // namespace fi_rotate
