#include "tests/model/Model.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "tests/model/Journal.h"
#include "tests/model/ModelResources.h"

namespace fi_model {
namespace {

constexpr std::int32_t kSuccess = 0;
constexpr std::int32_t kFailure = 3;
constexpr std::int32_t kExcludeBit = 4;
constexpr std::int32_t kKept = 0;
constexpr std::int32_t kInvalid = 1;
constexpr std::int32_t kRotated = 2;

std::string driver() {
    return "fi_process_backups : ";
}

// One call with earlier backups, pass by pass.
class Rotation {
public:
    Rotation(const Call& call, const TieOrder& ties, Configurations configurations, Prediction& prediction,
             Journal& journal)
        : call_(call),
          ties_(ties),
          configurations_(std::move(configurations)),
          prediction_(prediction),
          journal_(journal) {}

    std::int32_t run() {
        readFlags();
        load();
        for (const Backup& backup : backups_) {
            journal_.progress(driver() + "parsed [" + backup.name + "]");
            printTree(backup.root, 0, journal_);
        }
        printResources(configurations_, journal_);
        check();
        sortNewestFirst();
        claim();
        sortOldestFirst();
        release();
        return handOver();
    }

private:
    void readFlags() {
        std::map<std::string, int> occurrences;
        for (std::int32_t index = 0; index < call_.listSize; ++index) {
            const Entry& entry = call_.entries[static_cast<std::size_t>(index)];
            const std::int32_t excluded = entry.flag & kExcludeBit;
            if (++occurrences[entry.name] > 1) {
                journal_.note(Outcome::kNameListedTwice);
                journal_.noteIf(excludeBits_[entry.name] != excluded,
                                Outcome::kNameListedTwiceFlagOverwritten);
            }
            names_.push_back(entry.name);
            excludeBits_[entry.name] = excluded;
            journal_.failure(driver() + " Fiid [" + entry.name + "] exclude rotation flag [" +
                             std::to_string(entry.flag) + "] ");
            journal_.noteIf(excluded != 0, Outcome::kFlagExcluded);
            journal_.noteIf(excluded == 0 && entry.flag != 0, Outcome::kFlagOtherBitsOnly);
        }
    }

    void load() {
        backups_ = loadBackups(names_, call_.files, journal_);
        for (const Backup& backup : backups_) {
            prediction_.timeStamps.push_back(backup.timeStamp);
        }
    }

    void check() {
        for (Backup& backup : backups_) {
            const bool good = validate(backup.root, Mode::kCheck, configurations_, journal_);
            journal_.progress(driver() + (good ? "[RESOURCES MATCH] [" : "[INVALID RESOURCES] [") +
                              backup.name + "]");
            journal_.note(good ? Outcome::kCheckGood : Outcome::kCheckInvalid);
            backup.state = good ? kKept : kInvalid;
            if (!good) {
                failedCheck_.insert(backup.loadIndex);
            }
        }
    }

    void sortNewestFirst() {
        sortBy([&](const Backup& left, const Backup& right) {
            return left.timeStamp != right.timeStamp
                       ? left.timeStamp > right.timeStamp
                       : rank(ties_.newestFirst, left) < rank(ties_.newestFirst, right);
        });
    }

    void sortOldestFirst() {
        sortBy([&](const Backup& left, const Backup& right) {
            return left.timeStamp != right.timeStamp
                       ? left.timeStamp < right.timeStamp
                       : rank(ties_.oldestFirst, left) < rank(ties_.oldestFirst, right);
        });
        for (std::size_t index = 1; index < backups_.size(); ++index) {
            journal_.noteIf(backups_[index].timeStamp == backups_[index - 1].timeStamp,
                            Outcome::kTimeStampsTied);
        }
    }

    template <typename Before>
    void sortBy(Before before) {
        std::sort(backups_.begin(), backups_.end(), before);
    }

    static std::size_t rank(const std::vector<std::size_t>& ranks, const Backup& backup) {
        return ranks.empty() ? backup.loadIndex : ranks[backup.loadIndex];
    }

    void claim() {
        for (Backup& backup : backups_) {
            if (backup.state != kKept) {
                continue;
            }
            const bool good = validate(backup.root, Mode::kClaim, configurations_, journal_);
            journal_.progress(driver() + (good ? "[RESERVE GOOD] " : "") + backup.name +
                              " - T: " + backup.timeStamp);
            journal_.note(good ? Outcome::kClaimGood : Outcome::kClaimLost);
            backup.state = good ? kKept : kInvalid;
        }
    }

    void release() {
        int released = 0;
        for (Backup& backup : backups_) {
            if (selectionOf(configurations_)) {
                journal_.note(released == 0 ? Outcome::kRotationNotNeeded : Outcome::kRotationStopped);
                return;
            }
            if (backup.state != kKept) {
                journal_.note(Outcome::kRotationPassedOverInvalid);
            } else if (excludeBits_[backup.name] != 0) {
                journal_.progress(driver() + "Skipped Rotation for fiid [" + backup.name + "]");
                journal_.note(Outcome::kRotationSkippedExcluded);
            } else {
                const bool good = validate(backup.root, Mode::kRelease, configurations_, journal_);
                backup.state = good ? kRotated : kInvalid;
                ++released;
                journal_.note(Outcome::kReleased);
                journal_.noteIf(released == 10, Outcome::kRotationReleasedMany);
            }
        }
        journal_.note(Outcome::kRotationRanOut);
    }

    std::int32_t handOver() {
        const std::optional<std::string> selection = selectionOf(configurations_);
        if (!selection) {
            journal_.failure(driver() + "Resources not availabe, some/all are part of Skip rotation fiids");
            journal_.note(Outcome::kFinalNoResource);
            return kFailure;
        }
        prediction_.answer.selection = selection;
        journal_.progress(driver() + "resource_config_string [" + *selection + "] ");
        noteSelection();
        writeBack();
        printResources(configurations_, journal_);
        for (const Backup& backup : backups_) {
            journal_.progress(driver() + "parsed [" + backup.name + "] state=[" +
                              std::to_string(backup.state) + "]");
            printTree(backup.root, 0, journal_);
        }
        return kSuccess;
    }

    void writeBack() {
        for (std::size_t index = 0; index < names_.size(); ++index) {
            const auto backup = std::find_if(backups_.begin(), backups_.end(),
                                             [&](const Backup& one) { return one.name == names_[index]; });
            if (backup == backups_.end()) {
                journal_.note(Outcome::kFlagNotRewritten);
                continue;
            }
            prediction_.answer.flags[index] = backup->state;
            noteFinalState(*backup);
        }
    }

    void noteFinalState(const Backup& backup) {
        const bool excluded = excludeBits_[backup.name] != 0;
        journal_.noteIf(backup.state == kKept && !excluded, Outcome::kFinalKept);
        journal_.noteIf(backup.state == kKept && excluded, Outcome::kFinalKeptExcluded);
        journal_.noteIf(backup.state == kRotated, Outcome::kFinalRotated);
        if (backup.state == kInvalid) {
            journal_.note(failedCheck_.count(backup.loadIndex) > 0 ? Outcome::kFinalInvalidByCheck
                                                                   : Outcome::kFinalInvalidByClaim);
        }
    }

    void noteSelection() {
        journal_.noteIf(configurations_.empty(), Outcome::kSelectionEmpty);
        for (const Configuration& configuration : configurations_) {
            journal_.noteIf(configuration.targets.front().state == kUsed,
                            Outcome::kSelectionSkippedUsedTarget);
        }
    }

    const Call& call_;
    const TieOrder& ties_;
    Configurations configurations_;
    Prediction& prediction_;
    Journal& journal_;
    std::vector<std::string> names_;
    std::map<std::string, std::int32_t> excludeBits_;
    std::vector<Backup> backups_;
    std::set<std::size_t> failedCheck_;
};

bool argumentsAreGood(const Call& call, Journal& journal) {
    const bool lacksFlags = call.listSize != 0 && !call.hasFlags;
    journal.noteIf(lacksFlags, Outcome::kNullFlags);
    journal.noteIf(!call.hasResult, Outcome::kNullResult);
    journal.noteIf(!call.configuration, Outcome::kNullConfiguration);
    return !lacksFlags && call.hasResult && call.configuration.has_value();
}

std::int32_t firstBackup(const Configurations& configurations, Answer& answer, Journal& journal) {
    journal.progress(driver() + "fiidListSize empty, no previous backups to process");
    answer.selection = selectionOf(configurations);
    if (!answer.selection) {
        journal.failure(driver() + "no resource is available");
        journal.note(Outcome::kFirstBackupNoResource);
        return kFailure;
    }
    journal.note(Outcome::kFirstBackupSelected);
    return kSuccess;
}

std::int32_t statusOf(const Call& call, const TieOrder& ties, Prediction& prediction, Journal& journal) {
    if (!argumentsAreGood(call, journal)) {
        journal.failure(driver() + "Invalid/empty parameter");
        return kFailure;
    }
    const Configurations configurations = parseConfigurations(*call.configuration, journal);
    if (call.listSize == 0) {
        return firstBackup(configurations, prediction.answer, journal);
    }
    return Rotation(call, ties, configurations, prediction, journal).run();
}

void noteCall(const Call& call, Journal& journal) {
    journal.noteIf(call.listSize < 0, Outcome::kNegativeSize);
    journal.noteIf(call.listSize >= 0 && static_cast<std::size_t>(call.listSize) < call.entries.size(),
                   Outcome::kArraysLongerThanList);
}

}  // namespace

Prediction predict(const Call& call, const TieOrder& ties) {
    Prediction prediction;
    Answer& answer = prediction.answer;
    for (const Entry& entry : call.entries) {
        answer.flags.push_back(entry.flag);
    }
    Journal journal;
    noteCall(call, journal);
    try {
        answer.status = statusOf(call, ties, prediction, journal);
        journal.note(answer.status == kSuccess ? Outcome::kStatusSuccess : Outcome::kStatusFailure);
    } catch (const Malformed& malformed) {
        answer.malformed = malformed;
        journal.note(Outcome::kException);
    }
    answer.trace = std::move(journal.trace);
    answer.standardOutput = std::move(journal.standardOutput);
    prediction.tally = journal.tally;
    return prediction;
}

}  // namespace fi_model
