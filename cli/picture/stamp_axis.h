#pragma once

#include <map>
#include <set>
#include <string>

#include "cli/picture/picture.h"

namespace fi_rotate {

// The positions of time stamps on the axis: their times if all have the form YYYYMMDDhhmmss, otherwise their
// ranks in the order of the texts, by which the library compares them.
class CStampAxis {
public:
    explicit CStampAxis(const std::set<std::string>& stamps);

    [[nodiscard]] double at(const std::string& stamp) const;

    // Sets the range, the ticks and the line of the picture. The line is at the newest time stamp; the space
    // after it has no scale, because the time of the call is not known.
    void setAxisOf(SPicture& picture) const;

private:
    void addTexts(SPicture& picture) const;

    bool areTimes;
    std::map<std::string, double> places;
};

}  // namespace fi_rotate
