#pragma once

#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "tests/model/World.h"

// Which backups hold which targets of a world, worked out from its facts only, and not from any call.

namespace fi_model {

// A further target, by the numbers of its configuration and of itself in there.
using TargetIndex = std::pair<std::size_t, std::size_t>;

enum class EAgreement { kAgrees, kDisagrees, kMalformed };

// A backup whose document is read.
struct SHolder {
    // Its index in the caller's list.
    std::size_t entry = 0;
    std::size_t age = 0;
    bool isExcluded = false;
    EAgreement agreement = EAgreement::kAgrees;
    // The target of each pair, if the backup agrees with the configuration.
    std::vector<TargetIndex> indexes;

    bool holds(const TargetIndex& index) const;
    bool namesATargetTwice() const;
};

using Holders = std::vector<SHolder>;

// The backups that are read, in the caller's order: those before the first missing file. A name that is
// listed twice has the flag of its last entry.
Holders holdersOf(const SWorld& world);

std::set<TargetIndex> targetIndexesOf(const SWorld& world);

}  // namespace fi_model
