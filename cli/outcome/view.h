#pragma once

#include <set>
#include <string>

#include "host/outcome.h"

namespace fi_rotate {

// What of an outcome is shown.
struct SView {
    // The backups whose state word is among these; all when there is none.
    std::set<std::string> states;
    // Why each backup came to its state and what is short, if the outcome has an account.
    bool withReasons = false;

    [[nodiscard]] bool shows(const SBackupOutcome& backup) const {
        const auto word = stateWord(backup);
        return states.empty() || (word.has_value() && states.count(std::string(*word)) != 0);
    }
};

}  // namespace fi_rotate
