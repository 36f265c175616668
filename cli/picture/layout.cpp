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

}  // namespace

double plotWidth(std::size_t columns) {
    constexpr double kUsualColumn = 12;
    constexpr double kLeast = 480;
    constexpr double kMost = 1200;
    return std::clamp(static_cast<double>(columns) * kUsualColumn, kLeast, kMost);
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
    for (const SPictureGroup& group : picture.groups) {
        groupTops.push_back(height);
        height += kPictureLine;
        std::vector<SPlacedRow>& placed = rows.emplace_back();
        for (const SPictureRow& row : group.rows) {
            placed.push_back(place(row));
            height += placed.back().height;
        }
        height += kPictureLine / 3;
    }
}

SPlacedRow SLayout::place(const SPictureRow& row) const {
    std::vector<std::size_t> order(row.bars.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&row](std::size_t one, std::size_t other) {
        return row.bars[one].from < row.bars[other].from;
    });
    // By lane, the end of its last bar; nothing is further to the left than the beginning.
    std::vector<double> lanes;
    SPlacedRow placed;
    placed.top = height;
    placed.bars.resize(row.bars.size());
    for (const std::size_t i : order) {
        const SBar& bar = row.bars[i];
        auto lane = std::find_if(lanes.begin(), lanes.end(), [&bar](double end) { return end <= bar.from; });
        if (lane == lanes.end()) {
            lane = lanes.insert(lane, from);
        }
        placed.bars[i] = {height + static_cast<double>(lane - lanes.begin()) * kPictureLane, x(*lane)};
        *lane = bar.to;
    }
    placed.height = static_cast<double>(std::max<std::size_t>(lanes.size(), 1)) * kPictureLane;
    return placed;
}

double SLayout::x(double at) const {
    return left + (to > from ? (at - from) / (to - from) * width : 0);
}

}  // namespace fi_rotate
