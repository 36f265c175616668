#include "host/outcome.h"

#include <cstddef>
#include <unordered_map>

#include <fi_rotation/fi_process_backups.h>

namespace fi_rotate {

std::optional<std::vector<SChoice>> choices(std::string_view selection) {
    constexpr std::string_view kBetween = "][";
    std::vector<SChoice> result;
    if (selection.empty()) {
        return result;
    }

    // Neither target can hold a ';', which separates targets in the configuration.
    std::string_view rest = selection.substr(1, selection.size() - 2);
    while (true) {
        const std::size_t end = rest.find(kBetween);
        const std::string_view group = rest.substr(0, end);
        const std::size_t separator = group.find(';');
        if (separator == std::string_view::npos || group.find(';', separator + 1) != std::string_view::npos) {
            return std::nullopt;
        }
        result.push_back({std::string(group.substr(0, separator)), std::string(group.substr(separator + 1))});
        if (end == std::string_view::npos) {
            return result;
        }
        rest.remove_prefix(end + kBetween.size());
    }
}

void copyReasons(SOutcome& outcome) {
    // A name that is listed twice stands for two backups. Where their states differ, these tell them apart.
    std::unordered_map<std::string_view, std::vector<const SAccountBackup*>> known;
    for (const SAccountBackup& backup : outcome.account->backups) {
        known[backup.file].push_back(&backup);
    }
    for (SBackupOutcome& backup : outcome.backups) {
        for (const SAccountBackup* const candidate : known[backup.given.file]) {
            const bool isOfState = !backup.state.has_value() || candidate->state == *backup.state;
            if (isOfState && !backup.reason.has_value()) {
                backup.reason = candidate->reason;
            }
        }
    }
}

void withdraw(SOutcome& outcome) {
    outcome.status = FI_STATUS_FAILURE;
    outcome.selection.reset();
    for (SBackupOutcome& backup : outcome.backups) {
        backup.state.reset();
        if (backup.reason.has_value()) {
            backup.reason->isUndone = true;
        }
    }
}

static_assert(FI_BACKUP_KEPT == 0 && FI_BACKUP_INVALID == 1 && FI_BACKUP_ROTATED == 2,
              "kStateWords begins with the words for these, in that order");

std::string_view stateWord(std::int32_t state) {
    const bool isKnown = state >= FI_BACKUP_KEPT && state <= FI_BACKUP_ROTATED;
    return isKnown ? kStateWords.at(static_cast<std::size_t>(state)) : "unknown";
}

std::optional<std::string_view> stateWord(const SBackupOutcome& backup) {
    if (!backup.isLoaded) {
        return kNotLoaded;
    }
    return backup.state.has_value() ? std::optional(stateWord(*backup.state)) : std::nullopt;
}

}  // namespace fi_rotate
