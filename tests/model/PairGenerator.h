#pragma once

#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "tests/model/ConfigurationGenerator.h"
#include "tests/model/DocumentGenerator.h"
#include "tests/model/Random.h"

namespace fi_model {

// Chooses the devices of the earlier backups of one call, most of them from the configuration.
class PairGenerator {
public:
    PairGenerator(const Plan& plan, Random& random) : plan_(plan), random_(random) {}

    // The devices of the next backup.
    std::vector<PlannedPair> next();

    // One device that holds the first target of a configuration and nothing else.
    PlannedPair holding(std::size_t configuration);

private:
    PlannedPair pairIn(const PlannedConfiguration& configuration, std::size_t place);
    PlannedPair flawed(const PlannedPair& good);
    std::size_t furtherOf(std::size_t configuration);

    const Plan& plan_;
    Random& random_;
    // Configuration and target that an earlier backup of the call already holds.
    std::set<std::pair<std::size_t, std::size_t>> held_;
};

}  // namespace fi_model
