#include "host/outcome.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
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

void giveReasons(SOutcome& outcome) {
    // A name that is listed twice stands for two backups, whose states may differ.
    std::unordered_map<std::string_view, std::vector<const SAccountBackup*>> known;
    for (const SAccountBackup& backup : outcome.account->backups) {
        known[backup.file].push_back(&backup);
    }
    for (SBackup& backup : outcome.backups) {
        for (const SAccountBackup* const candidate : known[backup.file]) {
            const bool isOfState = !backup.state.has_value() || candidate->state == *backup.state;
            if (isOfState && !backup.reason.has_value()) {
                backup.reason = candidate->reason;
            }
        }
    }
}

std::optional<std::string_view> stateWord(const SBackup& backup) {
    if (!backup.loaded) {
        return "not loaded";
    }
    if (!backup.state.has_value()) {
        return std::nullopt;
    }
    switch (*backup.state) {
        case FI_BACKUP_KEPT:
            return "kept";
        case FI_BACKUP_INVALID:
            return "invalid";
        case FI_BACKUP_ROTATED:
            return "rotated";
        default:
            return "unknown";
    }
}

SOutcome onlyShown(SOutcome outcome, const std::set<std::string>& states) {
    if (states.empty()) {
        return outcome;
    }
    const auto isHidden = [&states](const SBackup& backup) {
        const auto word = stateWord(backup);
        return !word.has_value() || states.count(std::string(*word)) == 0;
    };
    auto& backups = outcome.backups;
    const auto hidden = std::remove_if(backups.begin(), backups.end(), isHidden);
    outcome.hiddenBackups = static_cast<std::size_t>(std::distance(hidden, backups.end()));
    backups.erase(hidden, backups.end());
    return outcome;
}

}  // namespace fi_rotate
