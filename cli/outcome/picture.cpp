#include "cli/outcome/picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/outcome/failure_words.h"
#include "cli/outcome/summary.h"
#include "cli/picture/arrange.h"
#include "cli/picture/stamp_axis.h"
#include "host/identifier.h"

namespace fi_rotate {
namespace {

// A target: its index in SAccount::configurations, and its index among the targets there.
using TargetIndex = std::pair<std::size_t, std::size_t>;

class CTargetIndexes {
public:
    explicit CTargetIndexes(const std::vector<SAccountConfiguration>& configurations) {
        for (std::size_t i = 0; i < configurations.size(); ++i) {
            for (std::size_t j = 0; j < configurations[i].targets.size(); ++j) {
                // Of several targets with one name the first is meant.
                indexes[configurations[i].first].emplace(configurations[i].targets[j], TargetIndex(i, j));
            }
        }
    }

    [[nodiscard]] std::optional<TargetIndex> find(const std::string& first, const std::string& target) const {
        const auto targets = indexes.find(first);
        if (targets == indexes.end()) {
            return std::nullopt;
        }
        const auto found = targets->second.find(target);
        return found == targets->second.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::unordered_map<std::string, std::unordered_map<std::string, TargetIndex>> indexes;
};

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

CStampAxis axisOf(const std::vector<SBackupOutcome>& backups) {
    std::set<std::string> stamps;
    for (const SBackupOutcome& backup : backups) {
        if (backup.isLoaded) {
            stamps.insert(backup.timeStamp);
        }
    }
    return CStampAxis(stamps);
}

// By file. A name that is listed twice has the flag word of its last entry.
using FlagWords = std::unordered_map<std::string, std::int32_t>;

FlagWords flagWordsOf(const std::vector<SBackupOutcome>& backups) {
    FlagWords words;
    for (const SBackupOutcome& backup : backups) {
        words[backup.given.file] = backup.given.flagWord;
    }
    return words;
}

// How the bar of a backup looks. Without a selection the library returns no states, so no backup is rotated
// even if the library tried that; a backup that it found invalid is still shown as invalid.
EBar kindOf(std::int32_t state, std::int32_t flagWord, bool isSelected) {
    if (state == FI_BACKUP_INVALID) {
        return EBar::kInvalid;
    }
    if (state == FI_BACKUP_ROTATED && isSelected) {
        return EBar::kRotated;
    }
    return (flagWord & FI_EXCLUDE_ROTATION) != 0 ? EBar::kExcluded : EBar::kPlain;
}

// Adds the bars of all backups to the rows of a picture.
class CBars {
public:
    CBars(SPicture& target, const SOutcome& shown, const CStampAxis& scale)
        : picture(target),
          outcome(shown),
          account(*shown.account),
          axis(scale),
          indexes(account.configurations) {
        for (const SBackupOutcome& backup : outcome.backups) {
            if (backup.isLoaded) {
                timeStamps[backup.given.file] = backup.timeStamp;
            }
        }
        for (const SAccountConfiguration& configuration : account.configurations) {
            naming.emplace_back(configuration.targets.size());
        }
    }

    void add() {
        for (std::size_t i = 0; i < account.backups.size(); ++i) {
            for (const auto& [objid, altobjid] : account.backups[i].pairs.inOrder()) {
                const auto index = indexes.find(targetOf(objid), targetOf(altobjid));
                if (index.has_value()) {
                    naming[index->first][index->second].push_back(i);
                } else {
                    addUnknown(account.backups[i].file, targetOf(objid), targetOf(altobjid));
                }
            }
        }
        for (const SAccountBackup& backup : account.backups) {
            bars.push_back(barOf(backup));
        }
        for (std::size_t i = 0; i < naming.size(); ++i) {
            for (std::size_t j = 0; j < naming[i].size(); ++j) {
                addTo(picture.groups[i].rows[j], naming[i][j], holderOf(i, j));
            }
        }
        addNotes();
    }

private:
    // The same for each of its targets.
    [[nodiscard]] SBar barOf(const SAccountBackup& backup) const {
        const std::string& timeStamp = timeStamps.at(backup.file);
        SBar bar;
        bar.from = axis.at(timeStamp);
        bar.to = picture.to;
        // A name that is listed twice stands for two backups, whose states may differ.
        bar.kind = kindOf(backup.state, flagWords.at(backup.file), outcome.selection.has_value());
        bar.isOpen = bar.kind != EBar::kRotated;
        bar.name = fileName(backup.file);
        bar.title =
            fmt::format("{}, time stamp {}: {}", backup.file, timeStamp, stateInWords(backup, bar.kind));
        return bar;
    }

    [[nodiscard]] std::string stateInWords(const SAccountBackup& backup, EBar kind) const {
        if (!backup.reason.has_value()) {
            return "the call ended before its state was known";
        }
        constexpr std::size_t kLongestReason = 300;
        const std::string reason = cutTo(asPrintable(inWords(*backup.reason)), kLongestReason);
        if (outcome.selection.has_value() || kind == EBar::kInvalid) {
            return fmt::format("{}: {}", stateWord(backup.state), reason);
        }
        return kind == EBar::kExcluded ? "held: " + reason : "held: nothing is rotated without a selection";
    }

    void addUnknown(const std::string& file, const std::string& first, const std::string& target) {
        if (unknown++ < kMostUnknown) {
            picture.notes.push_back(fmt::format("Not drawn: {} holds {} of {}, which is not configured",
                                                asName(fileName(file)), asName(target), asName(first)));
        }
    }

    [[nodiscard]] std::optional<std::size_t> holderOf(std::size_t configuration, std::size_t target) const {
        return account.heldBefore.empty() ? std::nullopt : account.heldBefore[configuration][target];
    }

    // Adds the bars of the backups; if there are too many, that of the holder and then those of the newest.
    void addTo(SPictureRow& row, std::vector<std::size_t>& backups, std::optional<std::size_t> holder) {
        if (backups.size() > kMostBars) {
            std::stable_sort(backups.begin(), backups.end(), [&](std::size_t one, std::size_t other) {
                return std::pair(one != holder, -bars[one].from) <
                       std::pair(other != holder, -bars[other].from);
            });
            tooMany += backups.size() - kMostBars;
            backups.resize(kMostBars);
        }
        for (const std::size_t backup : backups) {
            row.bars.push_back(bars[backup]);
        }
    }

    void addNotes() {
        if (unknown > kMostUnknown) {
            picture.notes.push_back(
                fmt::format("Not drawn: {} more targets that are not configured", unknown - kMostUnknown));
        }
        if (tooMany > 0) {
            picture.notes.push_back(fmt::format(
                "Not drawn: {} bars of targets that more than {} backups name", tooMany, kMostBars));
        }
    }

    SPicture& picture;
    const SOutcome& outcome;
    const SAccount& account;
    const CStampAxis& axis;
    CTargetIndexes indexes;
    FlagWords flagWords = flagWordsOf(outcome.backups);
    // By file.
    std::unordered_map<std::string, std::string> timeStamps;
    // By configuration and target: the indexes in `account.backups` of the backups that name it.
    std::vector<std::vector<std::vector<std::size_t>>> naming;
    // By index in `account.backups`.
    std::vector<SBar> bars;
    // Of one target.
    static constexpr std::size_t kMostBars = 4;
    static constexpr std::size_t kMostUnknown = 5;
    std::size_t unknown = 0;
    std::size_t tooMany = 0;
};

void addRows(SPicture& picture, const SAccount& account) {
    for (const SAccountConfiguration& configuration : account.configurations) {
        SPictureGroup& group = picture.groups.emplace_back();
        group.name = configuration.first;
        for (const std::string& target : configuration.targets) {
            group.rows.emplace_back().name = target;
        }
    }
}

// Sets the states of all rows if it is known who holds which target, and returns whether it is. Without a
// selection all targets are held by the backups that held them before the call.
bool setStatesIfKnown(SPicture& picture, const SOutcome& outcome) {
    if (!outcome.account.has_value() || outcome.exception.has_value()) {
        return false;
    }
    const SAccount& account = *outcome.account;
    const Holders& holders = outcome.selection.has_value() ? account.heldAfter : account.heldBefore;
    if (holders.empty()) {
        return false;
    }
    for (std::size_t i = 0; i < picture.groups.size(); ++i) {
        auto& rows = picture.groups[i].rows;
        for (std::size_t j = 0; j < rows.size(); ++j) {
            rows[j].state = holders[i][j].has_value() ? ETarget::kHeld : ETarget::kFree;
        }
    }
    for (const SShortage& shortage : account.shortages) {
        SPictureGroup& group = picture.groups[shortage.configuration];
        group.isShort = true;
        for (SPictureRow& row : group.rows) {
            row.state = ETarget::kBlocked;
        }
    }
    return true;
}

// The row of the chosen target; of several rows with its name the first that is free.
std::vector<SPictureRow>::iterator rowOfChosen(std::vector<SPictureRow>& rows, const std::string& name) {
    const auto isNamed = [&name](const SPictureRow& row) { return row.name == name; };
    const auto free = std::find_if(rows.begin(), rows.end(), [&](const SPictureRow& row) {
        return isNamed(row) && row.state == ETarget::kFree;
    });
    return free != rows.end() ? free : std::find_if(rows.begin(), rows.end(), isNamed);
}

void markChosenTargets(SPicture& picture, const SOutcome& outcome) {
    if (!outcome.selection.has_value()) {
        return;
    }
    const auto chosen = choices(*outcome.selection);
    if (!chosen.has_value()) {
        constexpr std::size_t kLongest = 300;
        picture.warnings.push_back(
            "The chosen targets are not marked, because names in the selection contain brackets: " +
            cutTo(asPrintable(*outcome.selection), kLongest));
        return;
    }
    for (std::size_t i = 0; i < chosen->size(); ++i) {
        // For a first backup only the selection is known, so its rows are added here.
        if (i == picture.groups.size()) {
            picture.groups.emplace_back().name = (*chosen)[i].first;
            picture.groups.back().rows.emplace_back().name = (*chosen)[i].chosen;
        }
        SPictureGroup& group = picture.groups[i];
        const auto row = rowOfChosen(group.rows, (*chosen)[i].chosen);
        if (row == group.rows.end()) {
            continue;
        }
        row->state = ETarget::kChosen;
        const auto target = static_cast<std::size_t>(row - group.rows.begin());
        group.isFreedByRotation = outcome.account.has_value() && !outcome.account->heldBefore.empty() &&
                                  outcome.account->heldBefore[i][target].has_value();
    }
}

// Marks the targets that an invalid backup names and nobody holds. To the library they are free.
void markUnprotectedTargets(SPicture& picture) {
    for (SPictureGroup& group : picture.groups) {
        for (SPictureRow& row : group.rows) {
            if (row.state != ETarget::kFree && row.state != ETarget::kChosen) {
                continue;
            }
            for (SBar& bar : row.bars) {
                if (bar.kind == EBar::kInvalid) {
                    bar.kind = EBar::kUnprotected;
                    row.state = row.state == ETarget::kFree ? ETarget::kUnprotected : row.state;
                }
            }
        }
    }
}

void warnOfNoSelection(SPicture& picture, const SOutcome& outcome) {
    if (outcome.exception.has_value()) {
        picture.warnings.push_back("An exception ended the call: " + outcome.exception->reason);
        return;
    }
    if (outcome.account.has_value() && !outcome.account->shortages.empty()) {
        std::vector<std::string> names;
        for (const SShortage& shortage : outcome.account->shortages) {
            names.push_back(outcome.account->configurations[shortage.configuration].first);
        }
        picture.warnings.push_back(fmt::format("No selection: {} {} no free target", someOf(names),
                                               names.size() == 1 ? "has" : "have"));
        return;
    }
    picture.warnings.emplace_back("No selection");
    constexpr std::size_t kMostMessages = 3;
    const std::vector<std::string> messages = messagesInWords(outcome);
    for (std::size_t i = 0; i < std::min(messages.size(), kMostMessages); ++i) {
        picture.warnings.push_back(messages[i]);
    }
}

void addWarnings(SPicture& picture, const SOutcome& outcome) {
    if (!outcome.selection.has_value()) {
        warnOfNoSelection(picture, outcome);
    }
    if (const auto names = withoutRestorePoints(outcome); !names.empty()) {
        picture.warnings.push_back("No restore point is left until the new snapshot is taken: " +
                                   someOf(names));
    }
    std::vector<std::string> notLoaded;
    for (const SBackupOutcome& backup : outcome.backups) {
        if (!backup.isLoaded) {
            notLoaded.push_back(fileName(backup.given.file));
        }
    }
    if (!notLoaded.empty()) {
        picture.warnings.push_back("Not loaded, so their targets are not drawn: " + someOf(notLoaded));
    }
}

// The word for the state of a backup that was neither rotated nor found invalid.
std::string_view plainWord(const SOutcome& outcome) {
    if (outcome.selection.has_value()) {
        return "kept";
    }
    return outcome.account.has_value() && !outcome.exception.has_value() ? "held" : "of unknown state";
}

void countBackups(SPicture& picture, const SOutcome& outcome) {
    if (outcome.backups.empty()) {
        picture.remarks.emplace_back(
            "No earlier backups; of each configuration only the chosen target is known");
        return;
    }
    std::unordered_map<std::string_view, std::int32_t> told;
    for (std::size_t i = 0; outcome.account.has_value() && i < outcome.account->backups.size(); ++i) {
        told.emplace(outcome.account->backups[i].file, outcome.account->backups[i].state);
    }
    const bool isSelected = outcome.selection.has_value();
    const FlagWords flagWords = flagWordsOf(outcome.backups);
    constexpr auto kKinds = static_cast<std::size_t>(EBar::kInvalid) + 1;
    const std::array<std::string_view, kKinds + 1> words{plainWord(outcome), "rotated", "excluded", "invalid",
                                                         kNotLoaded};
    std::array<std::size_t, words.size()> counts{};
    for (const SBackupOutcome& backup : outcome.backups) {
        const std::int32_t state = backup.state.value_or(told[backup.given.file]);
        const auto kind =
            static_cast<std::size_t>(kindOf(state, flagWords.at(backup.given.file), isSelected));
        ++counts[backup.isLoaded ? kind : kKinds];
    }
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (counts[i] > 0) {
            parts.push_back(fmt::format("{} {}", counts[i], words[i]));
        }
    }
    picture.remarks.push_back(
        fmt::format("{}: {}", countInWords(outcome.backups.size(), "backup"), fmt::join(parts, ", ")));
}

void explainBars(SPicture& picture, const SOutcome& outcome) {
    const auto explain = [&picture](EBar kind, std::string words) {
        return picture.has(kind) ? std::move(words) : std::string();
    };
    picture.plainMeaning =
        explain(EBar::kPlain, fmt::format("{}, begins at its time stamp", plainWord(outcome)));
    picture.rotatedMeaning = explain(EBar::kRotated, "rotated: ends with this call");
    picture.excludedMeaning = explain(EBar::kExcluded, "excluded from rotation");
    picture.invalidMeaning = explain(EBar::kInvalid, "invalid");
    picture.unprotectedMeaning = explain(EBar::kUnprotected, std::string(kUnprotectedMeaning));
}

}  // namespace

SPicture pictureOf(const SOutcome& outcome) {
    SPicture picture;
    picture.title = "Which backup holds which target, and which target the next snapshot uses";
    picture.rowLabel = "targets";
    const CStampAxis axis = axisOf(outcome.backups);
    axis.setAxisOf(picture);
    addWarnings(picture, outcome);
    countBackups(picture, outcome);
    if (outcome.account.has_value()) {
        addRows(picture, *outcome.account);
        CBars(picture, outcome, axis).add();
    }
    picture.areTargetsKnown = setStatesIfKnown(picture, outcome);
    markChosenTargets(picture, outcome);
    markUnprotectedTargets(picture);
    sortAndShorten(picture);
    explainBars(picture, outcome);
    return picture;
}

}  // namespace fi_rotate
