#pragma once

#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "tests/model/World.h"

// Who holds what in a world, told from its facts alone, and never from what a call makes of them.

namespace fi_model {

// A further target, by the numbers of its configuration and of itself in there.
using Place = std::pair<std::size_t, std::size_t>;

enum class EAgreement { kAgrees, kDisagrees, kMalformed };

// A backup whose document is read.
struct SHolder {
    // Its place in the caller's list.
    std::size_t entry = 0;
    std::size_t age = 0;
    bool isExcluded = false;
    EAgreement agreement = EAgreement::kAgrees;
    // Of a backup that agrees, the target of each pair.
    std::vector<Place> places;

    bool holds(const Place& place) const;
    bool namesATargetTwice() const;
};

using Holders = std::vector<SHolder>;

// In the caller's order. A file that is not there ends the reading: no later one is looked at. A name that is
// listed twice has the flag of its last entry.
Holders holdersOf(const SWorld& world);

std::set<Place> placesOf(const SWorld& world);

}  // namespace fi_model
