#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The contents of a picture with targets as rows and time as columns. Positions in time are numbers on the
// scale of the ticks.
namespace fi_rotate {

enum class EBar {
    kPlain,
    // It ends with the call.
    kRotated,
    kExcluded,
    // Invalid, or lost since it was overwritten.
    kInvalid,
    // Of an invalid backup that does not hold the target.
    kUnprotected,
};

// What a bar of the kind kUnprotected means.
constexpr std::string_view kUnprotectedMeaning = "named by an invalid backup only: the library may choose it";

struct SBar {
    double from = 0;
    double to = 0;
    EBar kind = EBar::kPlain;
    // The bar is drawn as going on after `to`.
    bool isOpen = false;
    // Written in the bar, or before it if it fits only there.
    std::string name;
    // Shown when the mouse points at the bar.
    std::string title;
};

// The state of a target at the end.
enum class ETarget {
    // Also when the state is not known.
    kHeld,
    kFree,
    // Not held, but an invalid backup names it.
    kUnprotected,
    // Free, and the next snapshot goes there.
    kChosen,
    // Held, and its configuration has no free target.
    kBlocked,
};

struct SPictureRow {
    std::string name;
    ETarget state = ETarget::kHeld;
    std::vector<SBar> bars;
    // Shown when the mouse points at the name; empty when there is no more to say than the name.
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
    // Written beside the name.
    std::string remark;
};

struct STick {
    double at = 0;
    std::string label;
};

struct SPicture {
    std::string title;
    // Written below the title.
    std::vector<std::string> warnings;
    std::vector<std::string> remarks;
    // Written below the rows: which rows are not drawn.
    std::string leftOut;
    // Written below the picture.
    std::vector<std::string> notes;
    // The headings of the columns and of the rows.
    std::string timeLabel;
    std::string rowLabel;
    double from = 0;
    double to = 0;
    // The plot must be wide enough to show so many columns.
    std::size_t columns = 1;
    std::vector<STick> ticks;
    std::vector<SPictureGroup> groups;
    // Whether the rows are all targets, each with its state.
    bool areTargetsKnown = true;
    // The legend: what each kind of bar means. A kind without a text is not in the legend.
    std::string plainMeaning;
    std::string rotatedMeaning;
    std::string excludedMeaning;
    std::string invalidMeaning;
    std::string unprotectedMeaning;
    std::string openMeaning;
    // A vertical line across all rows; not drawn without a label.
    double lineAt = 0;
    std::string lineLabel;

    // Whether `predicate` is true for some row.
    template <typename Predicate>
    [[nodiscard]] bool hasRow(Predicate predicate) const {
        return std::any_of(groups.begin(), groups.end(), [&predicate](const SPictureGroup& group) {
            return std::any_of(group.rows.begin(), group.rows.end(), predicate);
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
