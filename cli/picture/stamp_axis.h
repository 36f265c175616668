#pragma once

#include <map>
#include <set>
#include <string>

#include "cli/picture/picture.h"

namespace fi_rotate {

// Where time stamps lie: at their times, or where one of them has not the usual form at their places among
// all as texts, which is what the library goes by.
class CStampAxis {
public:
    explicit CStampAxis(const std::set<std::string>& stamps);

    [[nodiscard]] double at(const std::string& stamp) const;

    // The time of the call is not known, so the newest time stamp has a line, and the room behind it, in
    // which bars end or go on, no scale.
    void drawOn(SPicture& picture) const;

private:
    void addTexts(SPicture& picture) const;

    bool areTimes;
    std::map<std::string, double> places;
};

}  // namespace fi_rotate
