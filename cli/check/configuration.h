#pragma once

#include <string>
#include <vector>

#include "cli/check/configuration_reading.h"
#include "cli/check/findings.h"
#include "cli/check/unread.h"

namespace fi_rotate {

struct SConfigurations {
    // Those that the library uses: all of them, or those before the first malformed one.
    std::vector<SConfiguration> used;
    CUnread unread;
};

// What is wrong with `text` is added to `findings`.
SConfigurations checkConfiguration(const std::string& text, CFindings& findings);

}  // namespace fi_rotate
