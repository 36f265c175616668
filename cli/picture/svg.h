#pragma once

#include <string>
#include <string_view>

#include "cli/picture/picture.h"

namespace fi_rotate {

// The picture as an SVG document: no scripts, nothing loaded from elsewhere, light or dark as the reader
// prefers, and everything that a colour says is said by a pattern or a shape too. Bars of a row that overlap
// are drawn below one another.
std::string toSvg(const SPicture& picture);

// Whether a file with this text is such a document.
bool isOwnPicture(std::string_view text);

}  // namespace fi_rotate
