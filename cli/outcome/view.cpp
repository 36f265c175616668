#include "cli/outcome/view.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fi_rotation/fi_process_backups.h>

namespace fi_rotate {
namespace {

// How soon a backup is released: first its group, then its turn within the group.
std::pair<int, std::size_t> releaseOf(const SBackupOutcome& backup) {
    enum { kReleased, kReleasable, kExcluded, kNever };
    if (!backup.reason.has_value()) {
        return {kNever, 0};
    }
    switch (backup.reason->kind) {
        case EReason::kNeeded:
        case EReason::kInVain:
            return {kReleased, backup.reason->turn};
        case EReason::kNewestHolder:
        case EReason::kHoldsNothing:
        case EReason::kRotationStopped:
            // An excluded one is only skipped when its turn comes.
            return {(backup.given.flagWord & FI_EXCLUDE_ROTATION) != 0 ? kExcluded : kReleasable,
                    backup.reason->turn};
        case EReason::kExcluded:
            return {kExcluded, backup.reason->turn};
        default:
            return {kNever, 0};
    }
}

bool isShownBefore(EOrder order, const SBackupOutcome& one, const SBackupOutcome& other) {
    switch (order) {
        case EOrder::kTime:
            return std::pair(!one.isLoaded, one.timeStamp) < std::pair(!other.isLoaded, other.timeStamp);
        case EOrder::kRelease:
            return releaseOf(one) < releaseOf(other);
        case EOrder::kArgument:
        case EOrder::kCount:
            break;
    }
    return false;
}

}  // namespace

std::vector<const SBackupOutcome*> SView::shownBackups(const SOutcome& outcome) const {
    std::vector<const SBackupOutcome*> shown;
    for (const SBackupOutcome& backup : outcome.backups) {
        const auto word = stateWord(backup);
        if (states.empty() || (word.has_value() && states.count(std::string(*word)) != 0)) {
            shown.push_back(&backup);
        }
    }
    std::stable_sort(shown.begin(), shown.end(), [this](const auto* one, const auto* other) {
        return isShownBefore(order, *one, *other);
    });
    return shown;
}

}  // namespace fi_rotate
