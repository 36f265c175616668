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
    // It ends with the call.
    kRotated,
    kExcluded,
    // Invalid, or lost since it was overwritten.
    kInvalid,
};
constexpr std::size_t kBarKinds = 4;

struct SBar {
    double from = 0;
    double to = 0;
    EBar kind = EBar::kPlain;
    // It goes on after the end.
    bool isOpen = false;
    // Stands in the bar, or before it where it has room there only.
    std::string name;
    // All that is known, shown when the bar is pointed at.
    std::string title;
};

// What a target is in the end.
enum class ETarget {
    // Or nothing is known of it.
    kHeld,
    kFree,
    // Free, and the next snapshot goes there.
    kChosen,
    // Held, and its configuration has no free target.
    kBlocked,
};

struct SPictureRow {
    std::string name;
    ETarget state = ETarget::kHeld;
    std::vector<SBar> bars;
    // Shown when the name is pointed at, if there is more to be known than the name.
    std::string title;
};

struct SPictureGroup {
    std::string name;
    std::vector<SPictureRow> rows;
    // It has no free target, and rotation gives it none.
    bool isShort = false;
    std::size_t free = 0;
    // The chosen target was held until it was released.
    bool isFreedByRotation = false;
    // Stands beside the name.
    std::string remark;
};

struct STick {
    double at = 0;
    std::string label;
};

struct SPicture {
    std::string title;
    // Below the title: what nobody may overlook, and what else is to be known.
    std::vector<std::string> warnings;
    std::vector<std::string> remarks;
    // Below the rows, what of them is not drawn; and below the picture.
    std::string leftOut;
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
    // Whether the rows are all targets, each with its state.
    bool areTargetsKnown = true;
    // What the kinds of bars mean here; those without a meaning are not explained.
    std::string plainMeaning;
    std::string rotatedMeaning;
    std::string excludedMeaning;
    std::string invalidMeaning;
    std::string openMeaning;
    // A line across all rows; none without a label.
    double lineAt = 0;
    std::string lineLabel;

    // Whether a row is one of those.
    template <typename Is>
    [[nodiscard]] bool hasRow(Is is) const {
        return std::any_of(groups.begin(), groups.end(), [&is](const SPictureGroup& group) {
            return std::any_of(group.rows.begin(), group.rows.end(), is);
        });
    }

    [[nodiscard]] bool has(EBar kind) const {
        return hasRow([kind](const SPictureRow& row) {
            return std::any_of(row.bars.begin(), row.bars.end(),
                               [kind](const SBar& bar) { return bar.kind == kind; });
        });
    }

    [[nodiscard]] bool has(ETarget state) const {
        return hasRow([state](const SPictureRow& row) { return row.state == state; });
    }
};

}  // namespace fi_rotate
