#pragma once

#include <vector>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

// The backups that are there before the first round.
struct STakeOver {
    // One for each of SPlan::from.
    std::vector<STakenOver> backups;
    // Those of one backup are one after another.
    std::vector<SSnapshot> snapshots;
};

// Asks the library, by a safe call, what it makes of the documents of SPlan::from. Throws CUnusableDocuments
// when one is missing or damaged, or when its place in time before the first round cannot be told from its
// time stamp.
STakeOver takeOver(const SPlan& plan);

}  // namespace fi_rotate
