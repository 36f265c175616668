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
class CPairGenerator {
public:
    CPairGenerator(const Plan& planned, CRandom& choices) : plan(planned), random(choices) {}

    // The devices of the next backup.
    std::vector<SPlannedPair> next();

    // One device that holds the first target of a configuration and nothing else.
    SPlannedPair holding(std::size_t configuration);

private:
    SPlannedPair pairIn(const SPlannedConfiguration& configuration, std::size_t place);
    SPlannedPair flawed(const SPlannedPair& good);
    std::size_t furtherOf(std::size_t configuration);

    const Plan& plan;
    CRandom& random;
    // The targets that earlier backups of the call hold, each as the places of its configuration and of
    // itself.
    std::set<std::pair<std::size_t, std::size_t>> held;
};

}  // namespace fi_model
