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
    // First the released backups; then those that are released next, the oldest first; then the excluded
    // ones; then those that are never released.
    kRelease,
    kCount,
};

// Which parts of an outcome are shown, and in which order.
struct SView {
    // The states whose backups are shown; all backups when it is empty.
    std::set<std::string> states;
    // Show why each backup is in its state, and of each short configuration who holds its targets, if the
    // outcome has an account.
    bool withReasons = false;
    EOrder order = EOrder::kArgument;

    // The backups of `outcome` that are shown, in the order in which they are shown. They are borrowed from
    // it.
    [[nodiscard]] std::vector<const SBackupOutcome*> shownBackups(const SOutcome& outcome) const;
};

}  // namespace fi_rotate
