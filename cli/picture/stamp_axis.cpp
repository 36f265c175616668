#include "cli/picture/stamp_axis.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "cli/base/calendar.h"
#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/layout.h"
#include "cli/picture/time_axis.h"

namespace fi_rotate {

CStampAxis::CStampAxis(const std::set<std::string>& stamps)
    : areTimes(std::all_of(stamps.begin(), stamps.end(),
                           [](const std::string& stamp) { return parseTimeStamp(stamp).has_value(); })) {
    for (const std::string& stamp : stamps) {
        const auto place = static_cast<double>(places.size());
        places[stamp] = areTimes ? static_cast<double>(*parseTimeStamp(stamp)) : place;
    }
}

double CStampAxis::at(const std::string& stamp) const {
    return places.at(stamp);
}

void CStampAxis::setAxisOf(SPicture& picture) const {
    if (places.empty()) {
        return;
    }
    constexpr double kShareBehind = 0.2;
    picture.from = places.begin()->second;
    const double newest = places.rbegin()->second;
    const double least = areTimes ? static_cast<double>(kSecondsPerDay) / 4 : 1;
    picture.to = newest + std::max((newest - picture.from) * kShareBehind, least);
    picture.lineAt = newest;
    picture.lineLabel = "newest";
    // Wide enough for names in the bars.
    constexpr std::size_t kColumnsEach = 8;
    constexpr std::size_t kFewestColumns = 60;
    picture.columns = std::max(kColumnsEach * places.size(), kFewestColumns);
    picture.timeLabel =
        std::string(areTimes ? "time (as in the time stamps)" : "order of the time stamps as texts") +
        "; not to scale after the newest";
    if (areTimes) {
        picture.ticks = timeTicks(static_cast<std::int64_t>(picture.from), static_cast<std::int64_t>(newest),
                                  mostTicks(picture.columns) - 1);
    } else {
        addTexts(picture);
    }
}

void CStampAxis::addTexts(SPicture& picture) const {
    // As many as find room beside one another.
    constexpr std::size_t kMost = 5;
    constexpr std::size_t kLongest = 20;
    const std::size_t step = places.size() / kMost + 1;
    std::size_t count = 0;
    for (const auto& [stamp, place] : places) {
        if (count++ % step == 0) {
            picture.ticks.push_back({place, stamp.empty() ? "(none)" : cutTo(asPrintable(stamp), kLongest)});
        }
    }
}

}  // namespace fi_rotate
