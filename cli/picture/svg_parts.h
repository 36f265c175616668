#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/picture/picture.h"

// The parts of a picture as SVG source. Positions are in pixels: of a text the start of its base line, of
// everything else the upper left corner.
namespace fi_rotate {

constexpr double kBarHeight = 12;
constexpr double kTip = 5;
constexpr double kBlock = 6;
constexpr double kTagWidth = 34;

// Text as it may stand in an element or an attribute.
std::string escaped(std::string_view text);

// `content` is escaped already.
std::string text(double x, double y, std::string_view attributes, std::string_view content);

// A name, cut where it is too long. Pointing at it shows `title` or, without one, all of a name that was cut.
std::string cutText(double x, double y, std::string_view attributes, const std::string& whole,
                    const std::string& title);

double widthOf(const std::string& shown);

// Lines of at most so many columns, broken at spaces; a longer word is cut.
std::vector<std::string> wrapped(const std::string& whole, std::size_t columns);

const char* classOf(EBar kind);

// A bar. An open one ends in a tip, a rotated one in a block.
std::string shape(EBar kind, bool isOpen, double x, double y, double width);

// A tag that points to the left.
std::string chosenTag(double x, double y);

// A cross: the target is held and its configuration has no free target.
std::string cross(double x, double y);

}  // namespace fi_rotate
