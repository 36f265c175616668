#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/outcome.h"

namespace fi_rotate {

// In which order backups are shown.
enum class EOrder {
    kArgument,
    // By time stamp, the oldest first.
    kTime,
    // Those that were released first; then those that are released next, the oldest first; then those that
    // are not released at all.
    kRelease,
};

// What of an outcome is shown.
struct SView {
    // The backups whose state word is among these; all when there is none.
    std::set<std::string> states;
    // Why each backup came to its state and what is short, if the outcome has an account.
    bool withReasons = false;
    EOrder order = EOrder::kArgument;

    // Those backups of `outcome`, which they are borrowed from, in the order in which they are shown.
    [[nodiscard]] std::vector<const SBackupOutcome*> backupsOf(const SOutcome& outcome) const;
};

}  // namespace fi_rotate
