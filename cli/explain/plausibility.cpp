#include "cli/explain/plausibility.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

#include <fi_rotation/fi_process_backups.h>

#include "host/outcome.h"

namespace fi_rotate {
namespace {

// Whether no call can have this reason for this state. Backups are released and excluded ones skipped only
// while a configuration is short, and no other valid one is passed over then.
bool isContradicted(const SAccountBackup& backup) {
    if (!backup.reason.has_value()) {
        return false;
    }
    const SReason& reason = *backup.reason;
    switch (reason.kind) {
        case EReason::kNeeded:
        case EReason::kInVain:
            return reason.configuration.empty();
        case EReason::kExcluded:
            return backup.state == FI_BACKUP_INVALID || reason.configuration.empty();
        case EReason::kNewestHolder:
        case EReason::kHoldsNothing:
        case EReason::kRotationStopped:
            return backup.state == FI_BACKUP_INVALID || !reason.configuration.empty();
        default:
            return false;
    }
}

}  // namespace

bool isPlausible(const SAccount& account) {
    if (std::any_of(account.backups.begin(), account.backups.end(), isContradicted)) {
        return false;
    }
    const auto chosen = choices(account.selection.value_or(""));
    if (!chosen.has_value() || chosen->size() != account.heldAfter.size()) {
        return true;
    }
    for (std::size_t i = 0; i < chosen->size(); ++i) {
        const auto& holders = account.heldAfter[i];
        const auto free = std::find(holders.begin(), holders.end(), std::nullopt);
        const auto index = static_cast<std::size_t>(free - holders.begin());
        if (free == holders.end() || account.configurations[i].targets[index] != (*chosen)[i].chosen) {
            return false;
        }
    }
    return true;
}

void withdrawReasons(SAccount& account) {
    for (SAccountBackup& backup : account.backups) {
        backup.reason.reset();
    }
    account.shortages.clear();
    account.heldBefore.clear();
    account.heldAfter.clear();
}

}  // namespace fi_rotate
