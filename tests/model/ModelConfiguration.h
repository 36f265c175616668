#pragma once

#include <string>
#include <vector>

#include "tests/model/Journal.h"

namespace fi_model {

inline constexpr int kAvailable = 0;
inline constexpr int kUsed = 1;

// A further target of a configuration.
struct STarget {
    std::string enclosure;
    std::string device;
    int state = kAvailable;
};

// A configuration: its first target, its own state, and its further targets.
struct SConfiguration {
    std::string enclosure;
    std::string device;
    int state = kAvailable;
    std::vector<STarget> targets;
};

using Configurations = std::vector<SConfiguration>;

// The five references that the configuration text may hold, decoded once each.
std::string decodeReferences(const std::string& text);

// The configurations up to the first one that is rejected.
Configurations parseConfigurations(const std::string& text, SJournal& journal);

}  // namespace fi_model
