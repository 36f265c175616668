#include "cli/outcome/picture.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/layout.h"
#include "cli/picture/time_axis.h"
#include "host/identifier.h"

namespace fi_rotate {
namespace {

// Where the time stamps lie on the axis.
class CScale {
public:
    explicit CScale(const std::vector<SBackupOutcome>& backups)
        : stamps(stampsOf(backups)), isTime(areTimes(stamps)) {}

    [[nodiscard]] double at(const std::string& stamp) const {
        const auto time = isTime ? parseTimeStamp(stamp) : std::nullopt;
        return time.has_value() ? static_cast<double>(*time)
                                : static_cast<double>(std::distance(stamps.begin(), stamps.find(stamp)));
    }

    // A little is left for the bar of the newest.
    void drawOn(SPicture& picture) const {
        constexpr double kMarginShare = 0.2;
        picture.from = stamps.empty() ? 0 : at(*stamps.begin());
        const double newest = stamps.empty() ? 0 : at(*stamps.rbegin());
        const double least = isTime ? static_cast<double>(kSecondsPerDay) / 4 : 1;
        picture.to = newest + std::max((newest - picture.from) * kMarginShare, least);
        // Wide enough for names in the bars.
        constexpr std::size_t kColumnsEach = 8;
        constexpr std::size_t kFewestColumns = 60;
        picture.columns = std::max(kColumnsEach * stamps.size(), kFewestColumns);
        picture.timeLabel = isTime ? "time (as in the time stamps)" : "order of the time stamps as texts";
        if (isTime && !stamps.empty()) {
            picture.ticks = timeTicks(static_cast<std::int64_t>(picture.from),
                                      static_cast<std::int64_t>(picture.to), mostTicks(picture.columns));
        } else {
            addTexts(picture);
        }
    }

private:
    static std::set<std::string> stampsOf(const std::vector<SBackupOutcome>& backups) {
        std::set<std::string> found;
        for (const SBackupOutcome& backup : backups) {
            if (backup.isLoaded) {
                found.insert(backup.timeStamp);
            }
        }
        return found;
    }

    static bool areTimes(const std::set<std::string>& stamps) {
        return std::all_of(stamps.begin(), stamps.end(),
                           [](const std::string& stamp) { return parseTimeStamp(stamp).has_value(); });
    }

    void addTexts(SPicture& picture) const {
        // As many as find room beside one another.
        constexpr std::size_t kMost = 5;
        constexpr std::size_t kLongest = 20;
        const std::size_t step = stamps.size() / kMost + 1;
        std::size_t place = 0;
        for (const std::string& stamp : stamps) {
            if (place++ % step == 0) {
                picture.ticks.push_back(
                    {at(stamp), stamp.empty() ? "(none)" : cutTo(asPrintable(stamp), kLongest)});
            }
        }
    }

    std::set<std::string> stamps;
    bool isTime;
};

using Place = std::pair<std::size_t, std::size_t>;

std::optional<Place> placeOf(const SPicture& picture, const std::string& first, const std::string& target) {
    for (std::size_t i = 0; i < picture.groups.size(); ++i) {
        const auto& rows = picture.groups[i].rows;
        const auto row = std::find_if(rows.begin(), rows.end(),
                                      [&target](const SPictureRow& each) { return each.name == target; });
        if (picture.groups[i].name == first && row != rows.end()) {
            return Place(i, static_cast<std::size_t>(row - rows.begin()));
        }
    }
    return std::nullopt;
}

void addRows(SPicture& picture, const SOutcome& outcome) {
    const auto chosen = outcome.selection.has_value() ? choices(*outcome.selection) : std::nullopt;
    if (outcome.account.has_value()) {
        for (const SAccountConfiguration& configuration : outcome.account->configurations) {
            SPictureGroup& group = picture.groups.emplace_back();
            group.name = configuration.first;
            for (const std::string& target : configuration.targets) {
                group.rows.push_back({target, false});
            }
        }
    }
    if (!chosen.has_value()) {
        return;
    }
    for (std::size_t i = 0; i < chosen->size(); ++i) {
        // Of a first backup nothing but its selection is known.
        if (i == picture.groups.size()) {
            picture.groups.push_back({(*chosen)[i].first, {{(*chosen)[i].chosen, false}}});
        }
        auto& rows = picture.groups[i].rows;
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const SPictureRow& each) {
            return each.name == (*chosen)[i].chosen;
        });
        if (row != rows.end()) {
            row->isChosen = true;
        }
    }
}

// Without a selection nothing is handed back and no backup is rotated, whatever the library tried; what it
// found invalid is invalid all the same.
EBar kindOf(const SAccountBackup& backup, std::int32_t flagWord, bool isSelected) {
    if (backup.state == FI_BACKUP_INVALID) {
        return EBar::kInvalid;
    }
    if (backup.state == FI_BACKUP_ROTATED && isSelected) {
        return EBar::kRotated;
    }
    return (flagWord & FI_EXCLUDE_ROTATION) != 0 ? EBar::kExcluded : EBar::kPlain;
}

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// The backup as it was handed over. A name that is listed twice has the flag word of its last entry.
const SBackupOutcome& handedOver(const SOutcome& outcome, const std::string& file) {
    return *std::find_if(outcome.backups.rbegin(), outcome.backups.rend(),
                         [&file](const SBackupOutcome& each) { return each.given.file == file; });
}

std::string stateInWords(const SAccountBackup& backup, EBar kind, bool isSelected) {
    if (!backup.reason.has_value()) {
        return "the call ended before its state was known";
    }
    if (isSelected || kind == EBar::kInvalid) {
        return fmt::format("{}: {}", stateWord(backup.state), inWords(*backup.reason));
    }
    return kind == EBar::kExcluded ? "held: " + inWords(*backup.reason)
                                   : "held: nothing is rotated without a selection";
}

void addBars(SPicture& picture, const SOutcome& outcome, const CScale& scale, const SAccountBackup& backup) {
    const SBackupOutcome& listed = handedOver(outcome, backup.file);
    for (const auto& [objid, altobjid] : backup.pairs.inOrder()) {
        const auto place = placeOf(picture, targetOf(objid), targetOf(altobjid));
        if (!place.has_value()) {
            picture.notes.push_back(fmt::format("Not drawn: {}, which holds {} of {}: not configured",
                                                fileName(backup.file), targetOf(altobjid), targetOf(objid)));
            continue;
        }
        SBar bar;
        bar.group = place->first;
        bar.row = place->second;
        bar.from = scale.at(listed.timeStamp);
        bar.to = picture.to;
        bar.kind = kindOf(backup, listed.given.flagWord, outcome.selection.has_value());
        bar.isOpen = bar.kind != EBar::kRotated;
        bar.name = fileName(backup.file);
        bar.title = fmt::format("{}, time stamp {}: {}", backup.file, listed.timeStamp,
                                stateInWords(backup, bar.kind, outcome.selection.has_value()));
        picture.bars.push_back(std::move(bar));
    }
}

std::string remarkOn(const SOutcome& outcome) {
    if (outcome.exception.has_value()) {
        return "An exception ended the call: " + outcome.exception->reason;
    }
    return outcome.selection.has_value() ? "" : "No selection: a configuration has no free target";
}

}  // namespace

SPicture pictureOf(const SOutcome& outcome) {
    SPicture picture;
    picture.title = "Who holds which target, and what the next snapshot gets";
    picture.rowLabel = "targets";
    const CScale scale(outcome.backups);
    scale.drawOn(picture);
    addRows(picture, outcome);
    if (outcome.account.has_value()) {
        for (const SAccountBackup& backup : outcome.account->backups) {
            addBars(picture, outcome, scale, backup);
        }
    }
    if (const std::string remark = remarkOn(outcome); !remark.empty()) {
        picture.remarks.push_back(remark);
    }
    picture.lineAt = picture.to;
    picture.lineLabel = "now";
    picture.plainMeaning = picture.has(EBar::kPlain) ? "a backup, from its time stamp on" : "";
    picture.rotatedMeaning = picture.has(EBar::kRotated) ? "rotated: it ends now" : "";
    picture.excludedMeaning = picture.has(EBar::kExcluded) ? "excluded from rotation" : "";
    picture.invalidMeaning = picture.has(EBar::kInvalid) ? "invalid" : "";
    return picture;
}

}  // namespace fi_rotate
