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
class CRotation {
public:
    CRotation(const SCall& asked, const STieOrder& order, Configurations parsed, SPrediction& result,
              SJournal& lines)
        : call(asked), ties(order), configurations(std::move(parsed)), prediction(result), journal(lines) {}

    std::int32_t run() {
        readFlags();
        load();
        for (const SBackup& backup : backups) {
            journal.progress(driver() + "parsed [" + backup.name + "]");
            printTree(backup.root, 0, journal);
        }
        printResources(configurations, journal);
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
        for (std::int32_t index = 0; index < call.listSize; ++index) {
            const SEntry& entry = call.entries[static_cast<std::size_t>(index)];
            const std::int32_t excluded = entry.flag & kExcludeBit;
            if (++occurrences[entry.name] > 1) {
                journal.note(EOutcome::kNameListedTwice);
                journal.noteIf(excludeBits[entry.name] != excluded,
                               EOutcome::kNameListedTwiceFlagOverwritten);
            }
            names.push_back(entry.name);
            excludeBits[entry.name] = excluded;
            journal.failure(driver() + " Fiid [" + entry.name + "] exclude rotation flag [" +
                            std::to_string(entry.flag) + "] ");
            journal.noteIf(excluded != 0, EOutcome::kFlagExcluded);
            journal.noteIf(excluded == 0 && entry.flag != 0, EOutcome::kFlagOtherBitsOnly);
        }
    }

    void load() {
        backups = loadBackups(names, call.files, journal);
        for (const SBackup& backup : backups) {
            prediction.timeStamps.push_back(backup.timeStamp);
        }
    }

    void check() {
        for (SBackup& backup : backups) {
            const bool good = validate(backup.root, EMode::kCheck, configurations, journal);
            journal.progress(driver() + (good ? "[RESOURCES MATCH] [" : "[INVALID RESOURCES] [") +
                             backup.name + "]");
            journal.note(good ? EOutcome::kCheckGood : EOutcome::kCheckInvalid);
            backup.state = good ? kKept : kInvalid;
            if (!good) {
                failedCheck.insert(backup.loadIndex);
            }
        }
    }

    void sortNewestFirst() {
        sortBy([&](const SBackup& left, const SBackup& right) {
            return left.timeStamp != right.timeStamp
                       ? left.timeStamp > right.timeStamp
                       : rank(ties.newestFirst, left) < rank(ties.newestFirst, right);
        });
    }

    void sortOldestFirst() {
        sortBy([&](const SBackup& left, const SBackup& right) {
            return left.timeStamp != right.timeStamp
                       ? left.timeStamp < right.timeStamp
                       : rank(ties.oldestFirst, left) < rank(ties.oldestFirst, right);
        });
        for (std::size_t index = 1; index < backups.size(); ++index) {
            journal.noteIf(backups[index].timeStamp == backups[index - 1].timeStamp,
                           EOutcome::kTimeStampsTied);
        }
    }

    template <typename Before>
    void sortBy(Before before) {
        std::sort(backups.begin(), backups.end(), before);
    }

    static std::size_t rank(const std::vector<std::size_t>& ranks, const SBackup& backup) {
        return ranks.empty() ? backup.loadIndex : ranks[backup.loadIndex];
    }

    void claim() {
        for (SBackup& backup : backups) {
            if (backup.state != kKept) {
                continue;
            }
            const bool good = validate(backup.root, EMode::kClaim, configurations, journal);
            journal.progress(driver() + (good ? "[RESERVE GOOD] " : "") + backup.name +
                             " - T: " + backup.timeStamp);
            journal.note(good ? EOutcome::kClaimGood : EOutcome::kClaimLost);
            backup.state = good ? kKept : kInvalid;
        }
    }

    void release() {
        int released = 0;
        for (SBackup& backup : backups) {
            if (selectionOf(configurations)) {
                journal.note(released == 0 ? EOutcome::kRotationNotNeeded : EOutcome::kRotationStopped);
                return;
            }
            if (backup.state != kKept) {
                journal.note(EOutcome::kRotationPassedOverInvalid);
            } else if (excludeBits[backup.name] != 0) {
                journal.progress(driver() + "Skipped Rotation for fiid [" + backup.name + "]");
                journal.note(EOutcome::kRotationSkippedExcluded);
            } else {
                const bool good = validate(backup.root, EMode::kRelease, configurations, journal);
                backup.state = good ? kRotated : kInvalid;
                ++released;
                journal.note(EOutcome::kReleased);
                journal.noteIf(released == 10, EOutcome::kRotationReleasedMany);
            }
        }
        journal.note(EOutcome::kRotationRanOut);
    }

    std::int32_t handOver() {
        const std::optional<std::string> selection = selectionOf(configurations);
        if (!selection) {
            journal.failure(driver() + "Resources not availabe, some/all are part of Skip rotation fiids");
            journal.note(EOutcome::kFinalNoResource);
            return kFailure;
        }
        prediction.answer.selection = selection;
        journal.progress(driver() + "resource_config_string [" + *selection + "] ");
        noteSelection();
        writeBack();
        printResources(configurations, journal);
        for (const SBackup& backup : backups) {
            journal.progress(driver() + "parsed [" + backup.name + "] state=[" +
                             std::to_string(backup.state) + "]");
            printTree(backup.root, 0, journal);
        }
        return kSuccess;
    }

    void writeBack() {
        for (std::size_t index = 0; index < names.size(); ++index) {
            const auto backup = std::find_if(backups.begin(), backups.end(),
                                             [&](const SBackup& one) { return one.name == names[index]; });
            if (backup == backups.end()) {
                journal.note(EOutcome::kFlagNotRewritten);
                continue;
            }
            prediction.answer.flags[index] = backup->state;
            noteFinalState(*backup);
        }
    }

    void noteFinalState(const SBackup& backup) {
        const bool excluded = excludeBits[backup.name] != 0;
        journal.noteIf(backup.state == kKept && !excluded, EOutcome::kFinalKept);
        journal.noteIf(backup.state == kKept && excluded, EOutcome::kFinalKeptExcluded);
        journal.noteIf(backup.state == kRotated, EOutcome::kFinalRotated);
        if (backup.state == kInvalid) {
            journal.note(failedCheck.count(backup.loadIndex) > 0 ? EOutcome::kFinalInvalidByCheck
                                                                 : EOutcome::kFinalInvalidByClaim);
        }
    }

    void noteSelection() {
        journal.noteIf(configurations.empty(), EOutcome::kSelectionEmpty);
        for (const SConfiguration& configuration : configurations) {
            journal.noteIf(configuration.targets.front().state == kUsed,
                           EOutcome::kSelectionSkippedUsedTarget);
        }
    }

    const SCall& call;
    const STieOrder& ties;
    Configurations configurations;
    SPrediction& prediction;
    SJournal& journal;
    std::vector<std::string> names;
    std::map<std::string, std::int32_t> excludeBits;
    std::vector<SBackup> backups;
    std::set<std::size_t> failedCheck;
};

bool argumentsAreGood(const SCall& call, SJournal& journal) {
    const bool lacksFlags = call.listSize != 0 && !call.hasFlags;
    journal.noteIf(lacksFlags, EOutcome::kNullFlags);
    journal.noteIf(!call.hasResult, EOutcome::kNullResult);
    journal.noteIf(!call.configuration, EOutcome::kNullConfiguration);
    return !lacksFlags && call.hasResult && call.configuration.has_value();
}

std::int32_t firstBackup(const Configurations& configurations, SAnswer& answer, SJournal& journal) {
    journal.progress(driver() + "fiidListSize empty, no previous backups to process");
    answer.selection = selectionOf(configurations);
    if (!answer.selection) {
        journal.failure(driver() + "no resource is available");
        journal.note(EOutcome::kFirstBackupNoResource);
        return kFailure;
    }
    journal.note(EOutcome::kFirstBackupSelected);
    return kSuccess;
}

std::int32_t statusOf(const SCall& call, const STieOrder& ties, SPrediction& prediction, SJournal& journal) {
    if (!argumentsAreGood(call, journal)) {
        journal.failure(driver() + "Invalid/empty parameter");
        return kFailure;
    }
    const Configurations configurations = parseConfigurations(*call.configuration, journal);
    if (call.listSize == 0) {
        return firstBackup(configurations, prediction.answer, journal);
    }
    return CRotation(call, ties, configurations, prediction, journal).run();
}

void noteCall(const SCall& call, SJournal& journal) {
    journal.noteIf(call.listSize < 0, EOutcome::kNegativeSize);
    journal.noteIf(call.listSize >= 0 && static_cast<std::size_t>(call.listSize) < call.entries.size(),
                   EOutcome::kArraysLongerThanList);
}

}  // namespace

SPrediction predict(const SCall& call, const STieOrder& ties) {
    SPrediction prediction;
    SAnswer& answer = prediction.answer;
    for (const SEntry& entry : call.entries) {
        answer.flags.push_back(entry.flag);
    }
    SJournal journal;
    noteCall(call, journal);
    try {
        answer.status = statusOf(call, ties, prediction, journal);
        journal.note(answer.status == kSuccess ? EOutcome::kStatusSuccess : EOutcome::kStatusFailure);
    } catch (const SMalformed& malformed) {
        answer.malformed = malformed;
        journal.note(EOutcome::kException);
    }
    answer.trace = std::move(journal.trace);
    answer.standardOutput = std::move(journal.standardOutput);
    prediction.tally = journal.tally;
    return prediction;
}

}  // namespace fi_model
