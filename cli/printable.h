#pragma once

#include <string>
#include <string_view>

// File names and identifiers are bytes; what is shown of them must be UTF-8.
namespace fi_rotate {

// `text` with each byte that is not part of valid UTF-8 as \xNN, so that JSON can carry it.
std::string asUtf8(std::string_view text);

// The same, with control characters shown as \xNN too, so that the text stays on its line and leaves the
// terminal alone.
std::string asPrintable(std::string_view text);

}  // namespace fi_rotate
