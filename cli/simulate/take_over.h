#pragma once

#include <vector>

#include "cli/simulate/simulation.h"

namespace fi_rotate {

// The backups that exist before the first round.
struct STakeOver {
    // One for each of SPlan::from.
    std::vector<STakenOver> backups;
    // The snapshots of one backup are next to each other.
    std::vector<SSnapshot> snapshots;
    std::vector<SUnprotected> unprotected;
};

// Finds the backups of SPlan::from and what they hold, by a safe call of the library. Throws
// CUnusableDocuments when a document is missing or damaged, or when its time stamp is not a time before the
// first round.
STakeOver takeOver(const SPlan& plan);

}  // namespace fi_rotate
