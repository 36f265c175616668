#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// File names and identifiers may contain any bytes, but output must be UTF-8.
namespace fi_rotate {

// `text` with each byte that is not part of valid UTF-8 as \xNN, so that JSON can carry it.
std::string asUtf8(std::string_view text);

// The same, with control characters shown as \xNN too, so that the text stays on one line and cannot control
// the terminal.
std::string asPrintable(std::string_view text);

// `text` in quotation marks. Of a text with more bytes than `longest`, only whole characters from its start
// and dots.
std::string quoted(std::string_view text, std::size_t longest = std::string_view::npos);

// asPrintable(text) in quotation marks.
std::string printableInQuotes(std::string_view text);

// How many bytes at the start of `text` are valid UTF-8.
std::size_t utf8Length(std::string_view text);

// How many bytes the first character of `text` has; 1 when the first byte is not part of a character. `text`
// must not be empty.
std::size_t firstCharacterLength(std::string_view text);

// How many characters `text` has; a byte that is not part of a character counts as one.
std::size_t characterCount(std::string_view text);

// Where the character that holds the byte at `offset` begins.
std::size_t characterStart(std::string_view text, std::size_t offset);

// The small letter for a capital letter of ASCII; any other unit unchanged. Units are bytes or those of
// UTF-16.
template <typename Unit>
constexpr Unit lowerCase(Unit unit) {
    return unit >= Unit{'A'} && unit <= Unit{'Z'} ? static_cast<Unit>(unit - 'A' + 'a') : unit;
}

inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

}  // namespace fi_rotate
