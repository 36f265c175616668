#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

// Targets as rows and time as columns: what is to be drawn, whoever draws it. Positions in time are numbers
// whose scale is the ticks'.
namespace fi_rotate {

enum class EBar {
    kPlain,
    // It ends now, and that is what people look for.
    kRotated,
    kExcluded,
    // Invalid, or lost since it was overwritten.
    kInvalid,
};

struct SBar {
    // Places in SPicture::groups and its rows.
    std::size_t group = 0;
    std::size_t row = 0;
    double from = 0;
    double to = 0;
    EBar kind = EBar::kPlain;
    // It goes on after the end.
    bool isOpen = false;
    // Stands in the bar, as far as it has room.
    std::string name;
    // All that is known, shown when the bar is pointed at.
    std::string title;
};

struct SPictureRow {
    std::string name;
    // The next snapshot goes there.
    bool isChosen = false;
};

struct SPictureGroup {
    std::string name;
    std::vector<SPictureRow> rows;
};

struct STick {
    double at = 0;
    std::string label;
};

struct SPicture {
    std::string title;
    // Below the title, and below the picture.
    std::vector<std::string> remarks;
    std::vector<std::string> notes;
    // What the columns and the rows are.
    std::string timeLabel;
    std::string rowLabel;
    double from = 0;
    double to = 0;
    // At least so many of the smallest columns are to be told apart.
    std::size_t columns = 1;
    std::vector<STick> ticks;
    std::vector<SPictureGroup> groups;
    std::vector<SBar> bars;
    // What the kinds of bars mean here; those without a meaning are not explained.
    std::string plainMeaning;
    std::string rotatedMeaning;
    std::string excludedMeaning;
    std::string invalidMeaning;
    std::string openMeaning;
    // A line across all rows; none without a label.
    double lineAt = 0;
    std::string lineLabel;

    [[nodiscard]] bool has(EBar kind) const {
        return std::any_of(bars.begin(), bars.end(), [kind](const SBar& bar) { return bar.kind == kind; });
    }
};

}  // namespace fi_rotate
