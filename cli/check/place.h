#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fi_rotate {

// Both count from 1.
struct SPlace {
    std::size_t line = 1;
    std::size_t column = 1;
};

// A place and what stands there, to be shown with a caret under it.
struct SSpot {
    SPlace place;
    // The part of its line that the place is in, and the bytes of it before the place; may be empty.
    std::string excerpt;
    std::size_t caret = 0;
};

// Finds the places of bytes in a text, whose lines end in a line feed, a carriage return, or both.
class CLines {
public:
    // The text is borrowed.
    explicit CLines(std::string_view borrowed);

    // The byte at `offset`, which is at most the size of the text; columns count characters.
    SSpot at(std::size_t offset) const;

    // The byte at a place whose column counts UTF-16's units, as the XML library does. The nearest one when
    // there is no such place.
    std::size_t offsetOf(SPlace place) const;

private:
    std::string_view text;
    // Offsets of the first bytes of all lines.
    std::vector<std::size_t> starts;
};

}  // namespace fi_rotate
