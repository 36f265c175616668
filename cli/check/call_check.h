#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/check/findings.h"

namespace fi_rotate {

// What a call is given.
struct SInputs {
    std::string configuration;
    // What the configuration is called in a report.
    std::string configurationName;
    std::vector<std::string> files;
};

// The findings in the configuration and in each document, in this order.
std::vector<CFindings> checkCall(const SInputs& inputs);

}  // namespace fi_rotate
