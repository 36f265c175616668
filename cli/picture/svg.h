#pragma once

#include <string>
#include <string_view>

#include "cli/picture/picture.h"

namespace fi_rotate {

// The picture as an SVG document. It has no scripts and loads nothing, is light or dark as the reader
// prefers, and shows everything that a colour means by a pattern or a shape too. Bars of a row that overlap
// are drawn below one another.
std::string toSvg(const SPicture& picture);

// Whether `text` is a picture that fi-rotate drew.
bool isOwnPicture(std::string_view text);

}  // namespace fi_rotate
