#include "cli/picture/arrange.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/layout.h"

namespace fi_rotate {
namespace {

// Shorter runs of free targets are drawn, because their names are more useful than the room.
constexpr std::size_t kShortestRun = 3;
// Within these a picture has some thousand elements and is some thousand pixels high.
constexpr std::size_t kMostRows = 250;
constexpr std::size_t kMostBars = 2500;
constexpr std::size_t kMostBrief = 20;
constexpr std::size_t kMostNames = 3;

bool isFree(const SPictureRow& row) {
    return row.state == ETarget::kFree || row.state == ETarget::kChosen;
}

std::size_t freeOf(const std::vector<SPictureRow>& rows) {
    return static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), isFree));
}

std::size_t barsOf(const SPictureGroup& group) {
    std::size_t count = 0;
    for (const SPictureRow& row : group.rows) {
        count += row.bars.size();
    }
    return count;
}

std::string freeInWords(std::size_t free) {
    return free == 0 ? "none free" : fmt::format("{} free", free);
}

void countTargets(SPicture& picture) {
    std::size_t targets = 0;
    std::size_t free = 0;
    for (SPictureGroup& group : picture.groups) {
        group.free = freeOf(group.rows);
        // Of a short one it is said elsewhere. In another one, a rotation may still free a target.
        const std::string rotation = group.free == 0 ? " before a rotation" : "";
        group.remark = countInWords(group.rows.size(), "target") +
                       (group.isShort ? "" : ", " + freeInWords(group.free) + rotation);
        targets += group.rows.size();
        free += group.free;
    }
    picture.remarks.push_back(fmt::format("{}, {}, {}", countInWords(picture.groups.size(), "configuration"),
                                          countInWords(targets, "target"), freeInWords(free)));
}

void orderByUrgency(SPicture& picture) {
    std::vector<SPictureGroup>& groups = picture.groups;
    if (groups.size() < 2) {
        return;
    }
    std::stable_sort(groups.begin(), groups.end(), [](const SPictureGroup& one, const SPictureGroup& other) {
        return std::tuple(!one.isShort, !one.isFreedByRotation, one.free) <
               std::tuple(!other.isShort, !other.isFreedByRotation, other.free);
    });
    const bool hasShort = groups.front().isShort;
    const bool hasFreed = std::any_of(groups.begin(), groups.end(),
                                      [](const SPictureGroup& group) { return group.isFreedByRotation; });
    picture.remarks.push_back(fmt::format("Order of the configurations: {}{}by the number of free targets",
                                          hasShort ? "those without a free target, then " : "",
                                          hasFreed ? "those for which a backup was rotated, then " : ""));
}

// Marks the rows that are not drawn each by itself: runs of free ones, and too many in one configuration.
std::vector<bool> foldedRows(const std::vector<SPictureRow>& rows) {
    const auto isEmpty = [](const SPictureRow& row) {
        return row.state == ETarget::kFree && row.bars.empty();
    };
    std::vector<bool> folded;
    for (auto first = rows.begin(); first != rows.end();) {
        const auto end = std::find_if_not(first, rows.end(), isEmpty);
        const auto run = static_cast<std::size_t>(end - first);
        folded.insert(folded.end(), run, run >= kShortestRun);
        first = end;
        if (first != rows.end()) {
            folded.push_back(false);
            ++first;
        }
    }
    std::size_t drawnRows = 0;
    std::size_t drawnBars = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (folded[i] || rows[i].state == ETarget::kChosen) {
            continue;
        }
        folded[i] = drawnRows == kMostRows || drawnBars + rows[i].bars.size() > kMostBars;
        drawnRows += folded[i] ? 0 : 1;
        drawnBars += folded[i] ? 0 : rows[i].bars.size();
    }
    return folded;
}

SPictureRow rowFor(const std::vector<SPictureRow>& run, bool areTargetsKnown) {
    const std::size_t free = freeOf(run);
    const std::string others = fmt::format("{} not drawn", run.size());
    SPictureRow row;
    if (free == run.size()) {
        row.name = freeInWords(free);
    } else {
        row.name = areTargetsKnown ? others + ", " + freeInWords(free) : others;
    }
    row.title = run.front().name + " to " + run.back().name;
    return row;
}

void foldRows(std::vector<SPictureRow>& rows, bool areTargetsKnown) {
    const std::vector<bool> folded = foldedRows(rows);
    std::vector<SPictureRow> result;
    std::vector<SPictureRow> run;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        auto& list = folded[i] ? run : result;
        list.push_back(std::move(rows[i]));
        if (!run.empty() && (i + 1 == rows.size() || !folded[i + 1])) {
            result.push_back(rowFor(run, areTargetsKnown));
            run.clear();
        }
    }
    rows = std::move(result);
}

// How many of the first configurations are drawn whole.
std::size_t wholeGroups(const std::vector<SPictureGroup>& groups) {
    std::size_t rows = 0;
    std::size_t bars = 0;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        rows += groups[i].rows.size() + 1;
        bars += barsOf(groups[i]);
        if (i > 0 && (rows > kMostRows || bars > kMostBars)) {
            return i;
        }
    }
    return groups.size();
}

std::string freeOfOthers(std::vector<SPictureGroup>::const_iterator first,
                         std::vector<SPictureGroup>::const_iterator end) {
    const auto without =
        std::count_if(first, end, [](const SPictureGroup& group) { return group.free == 0; });
    if (without > 0) {
        return fmt::format("{} of them without a free target", without);
    }
    return end - first == 1 ? "with a free target" : "each with a free target";
}

void limitGroups(SPicture& picture) {
    std::vector<SPictureGroup>& groups = picture.groups;
    const std::size_t whole = wholeGroups(groups);
    if (whole == groups.size()) {
        return;
    }
    const std::size_t brief = picture.has(ETarget::kChosen) ? std::min(groups.size() - whole, kMostBrief) : 0;
    for (std::size_t i = whole; i < whole + brief; ++i) {
        auto& rows = groups[i].rows;
        rows.erase(std::remove_if(rows.begin(), rows.end(),
                                  [](const SPictureRow& row) { return row.state != ETarget::kChosen; }),
                   rows.end());
    }
    picture.remarks.push_back(
        fmt::format("The first {} drawn whole{}",
                    whole == 1 ? "configuration is" : fmt::format("{} configurations are", whole),
                    brief == 0 ? "" : fmt::format(", the next {} with the chosen target only", brief)));
    const auto end = groups.begin() + static_cast<std::ptrdiff_t>(whole + brief);
    if (end != groups.end()) {
        picture.leftOut = "and " +
                          countInWords(static_cast<std::size_t>(groups.end() - end), "configuration") +
                          " more" + (picture.areTargetsKnown ? ", " + freeOfOthers(end, groups.end()) : "");
        groups.erase(end, groups.end());
    }
}

}  // namespace

void sortAndShorten(SPicture& picture) {
    if (picture.areTargetsKnown) {
        countTargets(picture);
        orderByUrgency(picture);
    }
    for (SPictureGroup& group : picture.groups) {
        foldRows(group.rows, picture.areTargetsKnown);
    }
    limitGroups(picture);
}

std::string asName(const std::string& name) {
    return cutTo(asPrintable(name), kLongestPictureName);
}

std::string countInWords(std::size_t count, std::string_view thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string someOf(const std::vector<std::string>& names) {
    const std::size_t count = std::min(names.size(), kMostNames);
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const bool isLast = i + 1 == names.size();
        text += i == 0 ? "" : isLast ? " and " : ", ";
        text += asName(names[i]);
    }
    return count < names.size() ? fmt::format("{} and {} more", text, names.size() - count) : text;
}

}  // namespace fi_rotate
