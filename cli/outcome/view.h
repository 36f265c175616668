#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/outcome.h"

namespace fi_rotate {

// What of an outcome is shown.
struct SView {
    // The backups whose state word is among these; all when there is none.
    std::set<std::string> states;
    // Why each backup came to its state and what is short, if the outcome has an account.
    bool withReasons = false;

    // Those backups of `outcome`, which they are borrowed from, in the order in which they are shown.
    [[nodiscard]] std::vector<const SBackupOutcome*> backupsOf(const SOutcome& outcome) const {
        std::vector<const SBackupOutcome*> shown;
        for (const SBackupOutcome& backup : outcome.backups) {
            const auto word = stateWord(backup);
            if (states.empty() || (word.has_value() && states.count(std::string(*word)) != 0)) {
                shown.push_back(&backup);
            }
        }
        return shown;
    }
};

}  // namespace fi_rotate
