#pragma once

#include <string>
#include <vector>

#include "tests/model/Random.h"

namespace fi_model {

struct SPlannedTarget {
    std::string enclosure;
    std::string device;
};

// A configuration as meant, before it is written down with or without flaws.
struct SPlannedConfiguration {
    SPlannedTarget first;
    std::vector<SPlannedTarget> further;
};

using Plan = std::vector<SPlannedConfiguration>;

// A few configurations over few names, so that they often share targets.
Plan makePlan(CRandom& random);

// Many configurations with one target each and no name in common.
Plan makeLadderPlan(std::size_t size);

// The plan as a configuration text; most texts are well-formed.
std::string writePlan(const Plan& plan, CRandom& random);

}  // namespace fi_model
