#include "cli/explain/backup_list.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <unordered_map>
#include <utility>

#include <fi_rotation/fi_process_backups.h>

namespace fi_rotate {
namespace {

// The states that the library returns, by the name of the backup: of several backups with one name, that of
// the oldest.
using States = std::unordered_map<std::string, std::int32_t>;

States finalStates(const CAccountReader& account) {
    return {account.finalStates.begin(), account.finalStates.end()};
}

// The backups that are loaded or have a state, and whose flag words are missing.
std::vector<SBackupOutcome> withoutFlagWord(const CAccountReader& account) {
    std::set<std::string> known;
    for (const auto& listed : account.flagWords) {
        known.insert(listed.first);
    }
    std::vector<SBackupOutcome> backups;
    const auto addUnlessKnown = [&known, &backups](const std::string& file) {
        if (known.insert(file).second) {
            SBackupOutcome backup;
            backup.given.file = file;
            backup.isFlagWordKnown = false;
            backups.push_back(std::move(backup));
        }
    };
    for (const SAccountBackup& backup : account.account.backups) {
        addUnlessKnown(backup.file);
    }
    for (const auto& told : account.finalStates) {
        addUnlessKnown(told.first);
    }
    return backups;
}

std::string describeMissing(const CAccountReader& account, const std::vector<SBackupOutcome>& without) {
    if (account.hasBeginning() && account.flagWords.empty()) {
        return "the flag words, and all other messages of level 3: they are lost, or the product's log is "
               "not set to levels 3 and 4";
    }
    return describeMissingFlagWords(without.front().given.file, without.size());
}

}  // namespace

bool isExcludedYetRotated(const CAccountReader& account) {
    // The last flag word of a name counts.
    const std::unordered_map<std::string, std::int32_t> flagWords(account.flagWords.rbegin(),
                                                                  account.flagWords.rend());
    return std::any_of(account.finalStates.begin(), account.finalStates.end(),
                       [&flagWords](const auto& told) {
                           const auto flagWord = flagWords.find(told.first);
                           return told.second == FI_BACKUP_ROTATED && flagWord != flagWords.end() &&
                                  (flagWord->second & FI_EXCLUDE_ROTATION) != 0;
                       });
}

bool hasNameTwice(const CAccountReader& account) {
    std::set<std::string> names;
    return finalStates(account).size() != account.finalStates.size() ||
           std::any_of(account.flagWords.begin(), account.flagWords.end(),
                       [&names](const auto& listed) { return !names.insert(listed.first).second; });
}

std::vector<SBackupOutcome> backupsOf(const CAccountReader& account, bool areNamesOfOneCall,
                                      std::vector<std::string>& missing) {
    // That none of these lines is missing is known only by the claims.
    const bool isLoadingKnown = missing.empty() && (!account.claims.empty() || account.isEnded());
    const States states = finalStates(account);
    std::unordered_map<std::string, std::string> loaded;
    for (const SAccountBackup& backup : account.account.backups) {
        loaded[backup.file] = backup.timeStamp;
    }
    std::vector<SBackupOutcome> backups = withoutFlagWord(account);
    if (!backups.empty() && (!account.hasBeginning() || account.flagWords.empty())) {
        missing.push_back(describeMissing(account, backups));
    }
    if (!areNamesOfOneCall) {
        backups.clear();
    }
    for (const auto& [file, flagWord] : account.flagWords) {
        SBackupOutcome backup;
        backup.given = {file, flagWord};
        backups.push_back(std::move(backup));
    }
    for (SBackupOutcome& backup : backups) {
        const auto found = loaded.find(backup.given.file);
        const auto state = states.find(backup.given.file);
        backup.isLoaded = !isLoadingKnown || found != loaded.end() || state != states.end();
        backup.timeStamp = found != loaded.end() ? found->second : "";
        if (state != states.end()) {
            backup.state = state->second;
        }
    }
    return backups;
}

}  // namespace fi_rotate
