#include "cli/picture/layout.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "cli/base/columns.h"
#include "cli/base/text.h"

namespace fi_rotate {
namespace {

double widthOfNames(const SPicture& picture) {
    // Room for what stands above them.
    std::size_t widest = 10;
    for (const SPictureGroup& group : picture.groups) {
        widest = std::max(widest, displayWidth(asPrintable(group.name)));
        for (const SPictureRow& row : group.rows) {
            widest = std::max(widest, displayWidth(asPrintable(row.name)));
        }
    }
    return static_cast<double>(std::min(widest, kLongestPictureName)) * kPictureCharacter;
}

// Lanes of one row, by the end of the last bar in each.
std::size_t laneFor(std::vector<double>& lanes, const SBar& bar) {
    const auto free =
        std::find_if(lanes.begin(), lanes.end(), [&bar](double end) { return end <= bar.from; });
    const auto lane = static_cast<std::size_t>(free - lanes.begin());
    if (free == lanes.end()) {
        lanes.push_back(bar.to);
    } else {
        *free = bar.to;
    }
    return lane;
}

}  // namespace

double plotWidth(std::size_t columns) {
    constexpr double kUsualColumn = 12;
    constexpr double kSmallestColumn = 2;
    constexpr double kLeast = 480;
    constexpr double kUsual = 1200;
    constexpr double kMost = 6000;
    const auto count = static_cast<double>(columns);
    return count * kSmallestColumn > kUsual ? std::min(count * kSmallestColumn, kMost)
                                            : std::clamp(count * kUsualColumn, kLeast, kUsual);
}

std::size_t mostTicks(std::size_t columns) {
    constexpr double kWidest = 120;
    return static_cast<std::size_t>(plotWidth(columns) / kWidest) + 1;
}

SLayout::SLayout(const SPicture& picture)
    : left(widthOfNames(picture) + 3 * kPictureMargin),
      width(plotWidth(picture.columns)),
      from(picture.from),
      to(picture.to) {
    std::vector<std::size_t> order(picture.bars.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&picture](std::size_t one, std::size_t other) {
        return picture.bars[one].from < picture.bars[other].from;
    });

    std::vector<std::vector<std::vector<double>>> lanes;
    lanes.reserve(picture.groups.size());
    for (const SPictureGroup& group : picture.groups) {
        lanes.emplace_back(group.rows.size());
    }
    std::vector<std::size_t> laneOf(picture.bars.size());
    for (const std::size_t i : order) {
        const SBar& bar = picture.bars[i];
        laneOf[i] = laneFor(lanes[bar.group][bar.row], bar);
    }

    for (const auto& group : lanes) {
        groupTops.push_back(height);
        height += kPictureLine;
        std::vector<SPlacedRow>& placed = rows.emplace_back();
        for (const auto& row : group) {
            const auto count = static_cast<double>(std::max<std::size_t>(row.size(), 1));
            placed.push_back({height, count * kPictureLane});
            height += placed.back().height;
        }
        height += kPictureLine / 3;
    }
    for (std::size_t i = 0; i < picture.bars.size(); ++i) {
        const SBar& bar = picture.bars[i];
        barTops.push_back(rows[bar.group][bar.row].top + static_cast<double>(laneOf[i]) * kPictureLane);
    }
}

double SLayout::x(double at) const {
    return left + (to > from ? (at - from) / (to - from) * width : 0);
}

}  // namespace fi_rotate
