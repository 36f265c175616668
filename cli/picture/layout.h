#pragma once

#include <cstddef>
#include <vector>

#include "cli/picture/picture.h"

namespace fi_rotate {

// Lengths are in pixels, but for the longest name, which is in characters.
constexpr double kPictureMargin = 16;
constexpr double kPictureLine = 18;
constexpr double kPictureLane = 16;
constexpr double kPictureCharacter = 6.7;
constexpr std::size_t kLongestPictureName = 32;

// The width of the time axis in a picture with so many columns.
double plotWidth(std::size_t columns);

// How many dates fit side by side on it.
std::size_t mostTicks(std::size_t columns);

struct SPlacedBar {
    double top = 0;
    // The end of the bar before it in its lane, from the left edge.
    double before = 0;
};

struct SPlacedRow {
    double top = 0;
    double height = 0;
    // Bars that overlap in time are drawn in different lanes.
    std::vector<SPlacedBar> bars;
};

// The positions of the rows and bars of a picture. Vertical positions are measured from the heading of the
// first group.
struct SLayout {
    explicit SLayout(const SPicture& picture);

    // From the left edge.
    [[nodiscard]] double x(double at) const;

    // The plot begins to the right of the names.
    double left = 0;
    double width = 0;
    double height = 0;
    std::vector<double> groupTops;
    // By group and row.
    std::vector<std::vector<SPlacedRow>> rows;

private:
    [[nodiscard]] SPlacedRow place(const SPictureRow& row) const;

    double from;
    double to;
};

}  // namespace fi_rotate
