#pragma once

#include <string>
#include <vector>

#include "cli/check/findings.h"
#include "cli/check/place.h"

namespace fi_rotate {

// The time stamp of one document.
struct SStamp {
    std::string text;
    SSpot spot;
    // Borrowed: those of its document.
    CFindings* findings = nullptr;
};

// Compares the time stamps of a call, in the order of their documents, and adds to the findings of each
// document what is wrong with its own.
void checkTimeStamps(const std::vector<SStamp>& stamps);

}  // namespace fi_rotate
