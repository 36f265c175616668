#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// File names and identifiers are bytes; what is shown of them must be UTF-8.
namespace fi_rotate {

// `text` with each byte that is not part of valid UTF-8 as \xNN, so that JSON can carry it.
std::string asUtf8(std::string_view text);

// The same, with control characters shown as \xNN too, so that the text stays on its line and leaves the
// terminal alone.
std::string asPrintable(std::string_view text);

// `text` in quotation marks; of one with more bytes than `longest` the start, which cuts no character, and
// dots.
std::string quoted(std::string_view text, std::size_t longest = std::string_view::npos);

// The same of a printable text.
std::string quotedPrintable(std::string_view text);

// Bytes at the start of `text` up to the first that is not part of valid UTF-8.
std::size_t utf8Length(std::string_view text);

// Bytes of the first character of `text`, which is not empty; 1 when it begins with none.
std::size_t firstCharacterLength(std::string_view text);

// Characters in `text`, each byte that is not part of one counting for one.
std::size_t characterCount(std::string_view text);

// Where the character that holds the byte at `offset` begins.
std::size_t characterStart(std::string_view text, std::size_t offset);

// An ASCII capital letter as a small one, any other unit of a text as it is; of bytes or of UTF-16.
template <typename Unit>
constexpr Unit lowerCase(Unit unit) {
    return unit >= Unit{'A'} && unit <= Unit{'Z'} ? static_cast<Unit>(unit - 'A' + 'a') : unit;
}

inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

}  // namespace fi_rotate
