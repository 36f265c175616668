#include "cli/outcome/summary.h"

#include <algorithm>

namespace fi_rotate {

STotals totalsOf(const SOutcome& outcome) {
    STotals totals;
    for (const SBackupOutcome& backup : outcome.backups) {
        const auto word = stateWord(backup);
        if (!word.has_value()) {
            ++totals.withoutState;
            continue;
        }
        const auto index = std::find(kStateWords.begin(), kStateWords.end(), *word) - kStateWords.begin();
        ++totals.ofState.at(static_cast<std::size_t>(index));
        const bool isInVain = backup.reason.has_value() && backup.reason->kind == EReason::kInVain;
        totals.inVain += isInVain ? 1 : 0;
    }
    return totals;
}

std::vector<SRestorePoints> restorePointsOf(const SOutcome& outcome) {
    std::vector<SRestorePoints> points;
    if (!outcome.account.has_value() || outcome.account->heldBefore.empty()) {
        return points;
    }
    for (std::size_t i = 0; i < outcome.account->configurations.size(); ++i) {
        const std::size_t before = keptHoldersBeforeRotation(*outcome.account, i);
        // Without a selection nothing is released in the end.
        points.push_back({before, outcome.selection.has_value() ? keptHolders(*outcome.account, i) : before});
    }
    return points;
}

std::vector<std::string> withoutRestorePoints(const SOutcome& outcome) {
    std::vector<std::string> names;
    const std::vector<SRestorePoints> points = restorePointsOf(outcome);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].areAllGone()) {
            names.push_back(outcome.account->configurations[i].first);
        }
    }
    return names;
}

}  // namespace fi_rotate
