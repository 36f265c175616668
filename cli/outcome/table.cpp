#include "cli/outcome/table.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include <fmt/color.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/outcome/failure_words.h"
#include "cli/outcome/summary.h"

namespace fi_rotate {
namespace {

fmt::text_style styleOf(std::string_view state) {
    if (state == "kept") {
        return fmt::fg(fmt::terminal_color::green);
    }
    if (state == "rotated") {
        return fmt::fg(fmt::terminal_color::yellow);
    }
    return fmt::fg(fmt::terminal_color::red);
}

// Whether the end of the call is known. It can be missing only for a call in a log.
bool isEndKnown(const SOutcome& outcome) {
    return outcome.status.has_value() || outcome.exception.has_value();
}

std::string withoutSelection(const SOutcome& outcome) {
    if (outcome.status == FI_STATUS_SUCCESS) {
        return "Selection: made, but the trace of a first backup does not contain it\n";
    }
    return isEndKnown(outcome) ? "Selection: none\n" : "Selection: not known\n";
}

SCell restorePointsCell(const SRestorePoints& points) {
    const std::string text = points.after == points.before
                                 ? fmt::to_string(points.after)
                                 : fmt::format("{} ({} before)", points.after, points.before);
    return {text, points.areAllGone() ? styleOf("invalid") : fmt::text_style()};
}

// Warns of each configuration that cannot be restored if its new snapshot fails.
std::string lostRestorePoints(const SOutcome& outcome, bool colour) {
    std::string text;
    for (const std::string& name : withoutRestorePoints(outcome)) {
        const std::string warning = fmt::format(
            "WARNING: {} has no restore point left until its new snapshot is taken", asPrintable(name));
        text += styled({warning, styleOf("invalid")}, colour) + "\n";
    }
    return text;
}

std::string selectionTable(const SOutcome& outcome, std::size_t width, bool colour) {
    if (!outcome.selection.has_value()) {
        return withoutSelection(outcome);
    }
    const auto chosen = choices(*outcome.selection);
    if (!chosen.has_value()) {
        return "Selection: " + asPrintable(*outcome.selection) + "\n";
    }
    if (chosen->empty()) {
        return "Selection: empty, because no configuration could be used\n";
    }
    const std::vector<SRestorePoints> points = restorePointsOf(outcome);
    const bool arePointsKnown = points.size() == chosen->size();
    std::vector<Row> rows{toRow({"first target", "chosen target"}, fmt::emphasis::bold)};
    if (arePointsKnown) {
        rows.front().push_back({"restore points", fmt::emphasis::bold});
    }
    for (std::size_t i = 0; i < chosen->size(); ++i) {
        rows.push_back(toRow({asPrintable((*chosen)[i].first), asPrintable((*chosen)[i].chosen)}));
        if (arePointsKnown) {
            rows.back().push_back(restorePointsCell(points[i]));
        }
    }
    return "Selection\n" + toTableOrLists(rows, width, colour) + lostRestorePoints(outcome, colour);
}

using Backups = std::vector<const SBackupOutcome*>;

// The library returns no states without a selection. A state that it returned can be missing only in a log.
bool isWithoutStates(const SOutcome& outcome) {
    return outcome.exception.has_value() || outcome.status == FI_STATUS_FAILURE;
}

std::string_view wordsWithoutState(const SOutcome& outcome) {
    return isWithoutStates(outcome) ? "without a state" : "of unknown state";
}

std::string_view mayBeMore(bool areAllKnown) {
    return areAllKnown ? "" : "; there may be more backups, because lines are missing";
}

std::string totalsLine(const SOutcome& outcome, bool areAllKnown) {
    const STotals totals = totalsOf(outcome);
    std::vector<std::string> counts;
    for (std::size_t i = 0; i < kStateWords.size(); ++i) {
        if (totals.ofState.at(i) != 0) {
            counts.push_back(fmt::format("{} {}", totals.ofState.at(i), kStateWords.at(i)));
        }
        if (kStateWords.at(i) == stateWord(FI_BACKUP_ROTATED) && totals.inVain != 0) {
            counts.back() += fmt::format(" ({} of them freed no target that was needed)", totals.inVain);
        }
    }
    if (totals.withoutState != 0) {
        counts.push_back(fmt::format("{} {}", totals.withoutState, wordsWithoutState(outcome)));
    }
    return counts.empty() ? ""
                          : fmt::format("Total: {}{}\n", fmt::join(counts, ", "), mayBeMore(areAllKnown));
}

// The backups that --only leaves out: "2 in other states, 5 without a state".
std::string hiddenInWords(const SOutcome& outcome, std::size_t hidden) {
    const std::size_t withoutState = totalsOf(outcome).withoutState;
    std::vector<std::string> counts;
    if (hidden != withoutState) {
        counts.push_back(fmt::format("{} in other states", hidden - withoutState));
    }
    if (withoutState != 0) {
        counts.push_back(fmt::format("{} {}", withoutState, wordsWithoutState(outcome)));
    }
    return fmt::format("{}", fmt::join(counts, ", "));
}

std::string noneShown(const SOutcome& outcome, std::size_t hidden, bool areAllKnown) {
    const std::size_t withoutState = totalsOf(outcome).withoutState;
    if (withoutState == 0 || isWithoutStates(outcome)) {
        return fmt::format("Backups: none in these states, {}{}\n", hiddenInWords(outcome, hidden),
                           mayBeMore(areAllKnown));
    }
    // Any of them may be in the states that were asked for.
    const std::size_t others = hidden - withoutState;
    return fmt::format("Backups: the {} of {} {} not known{}{}\n", withoutState == 1 ? "state" : "states",
                       withoutState, withoutState == 1 ? "is" : "are",
                       others == 0 ? "" : fmt::format(", {} in other states", others),
                       mayBeMore(areAllKnown));
}

// A flag word or a time stamp that only the missing lines of a log tell is not known.
std::string flagsCell(const SBackupOutcome& backup) {
    return backup.isFlagWordKnown ? fmt::to_string(backup.given.flagWord) : "not known";
}

std::string timeStampCell(const SOutcome& outcome, const SBackupOutcome& backup, bool areAllKnown) {
    if (!backup.timeStamp.empty()) {
        return asPrintable(backup.timeStamp);
    }
    const bool isStateKnown = stateWord(backup).has_value() || isWithoutStates(outcome);
    return areAllKnown && isStateKnown && backup.isFlagWordKnown ? "-" : "not known";
}

SCell stateCell(const SOutcome& outcome, const SBackupOutcome& backup) {
    const auto state = stateWord(backup);
    if (state.has_value()) {
        return {std::string(*state), styleOf(*state)};
    }
    return {isWithoutStates(outcome) ? "-" : "not known", {}};
}

std::string backupTable(const SOutcome& outcome, const Backups& shown, bool areAllKnown,
                        std::string_view ifNone, std::size_t width, bool colour) {
    const std::size_t hidden = outcome.backups.size() - shown.size();
    if (shown.empty() && hidden != 0) {
        return noneShown(outcome, hidden, areAllKnown);
    }
    if (shown.empty()) {
        return fmt::format("Backups: {}\n", ifNone);
    }
    std::vector<Row> rows{toRow({"file", "time stamp", "flags", "state"}, fmt::emphasis::bold)};
    for (const SBackupOutcome* const backup : shown) {
        Row row = toRow({asPrintable(backup->given.file), timeStampCell(outcome, *backup, areAllKnown),
                         flagsCell(*backup)});
        row.push_back(stateCell(outcome, *backup));
        rows.push_back(std::move(row));
    }
    return "Backups\n" + toTableOrLists(rows, width, colour) +
           (hidden == 0 ? "" : fmt::format("  ({})\n", hiddenInWords(outcome, hidden))) +
           totalsLine(outcome, areAllKnown);
}

std::string reasonFor(const SOutcome& outcome, const SBackupOutcome& backup) {
    if (!backup.reason.has_value()) {
        if (!stateWord(backup).has_value() && !isWithoutStates(outcome)) {
            return "lines are missing";
        }
        return backup.isLoaded ? "the reason is not known" : "ignored";
    }
    return asPrintable(inWords(*backup.reason));
}

std::string reasonTable(const SOutcome& outcome, const Backups& shown) {
    const std::string_view withoutState = isWithoutStates(outcome) ? "no state" : "state not known";
    std::string text = "Reasons\n";
    for (const SBackupOutcome* const backup : shown) {
        text += fmt::format("  {}\n    {}: {}\n", asPrintable(backup->given.file),
                            stateWord(*backup).value_or(withoutState), reasonFor(outcome, *backup));
    }
    return text;
}

std::string shortageTable(const SAccount& account) {
    std::string text;
    for (const SShortage& shortage : account.shortages) {
        const SAccountConfiguration& configuration = account.configurations[shortage.configuration];
        text += fmt::format("\n{} has no free target\n", asPrintable(configuration.first));
        if (shortage.targets.empty()) {
            text += "  it has no further targets; add at least one\n";
        }
        for (const SHeldTarget& held : shortage.targets) {
            text += fmt::format("  {} is held by {}, {}\n", asPrintable(configuration.targets[held.target]),
                                asPrintable(account.backups[held.holder].file),
                                held.isExcluded ? "which would be rotated if it were not excluded"
                                                : "which is invalid, so it is never released");
        }
    }
    return text;
}

// "1 backup", "2 backups".
std::string countedBackups(std::size_t count) {
    return fmt::format("{} backup{}", count, count == 1 ? "" : "s");
}

std::string wouldBeReleased(const std::vector<std::string>& released) {
    return released.empty() ? "no backup would be released"
                            : countedBackups(released.size()) + " would be released";
}

std::string inWords(const std::vector<SChange>& changes) {
    std::vector<std::string> words;
    words.reserve(changes.size());
    for (const SChange& change : changes) {
        words.push_back(change.kind == EChange::kAllowRotation
                            ? "allow rotation of " + asPrintable(change.file)
                            : "delete the backup of " + asPrintable(change.file) + ", which is invalid");
    }
    return fmt::format("{}", fmt::join(words, ", and "));
}

std::string howToDelete(const std::vector<SChange>& changes) {
    const auto deletions = std::count_if(changes.begin(), changes.end(), [](const SChange& change) {
        return change.kind == EChange::kLeaveOut;
    });
    return deletions == 0 ? ""
                          : fmt::format(
                                "  Run without {} first, to try it. Delete in the product only if no "
                                "other document names the targets.\n",
                                deletions == 1 ? "that document" : "those documents");
}

// Where targets were taken out of the configuration by mistake, a new one would let a call overwrite what the
// backups hold that name them.
std::string unknownTargetsLine(const SAccount& account) {
    const auto count = std::count_if(account.backups.begin(), account.backups.end(), [](const auto& backup) {
        return backup.reason.has_value() && (backup.reason->kind == EReason::kUnknownTarget ||
                                             backup.reason->kind == EReason::kUnknownConfiguration);
    });
    return count == 0 ? ""
                      : fmt::format(
                            "Before that: {} {} targets that are not configured, so what {} can be "
                            "overwritten; see --explain\n",
                            countedBackups(static_cast<std::size_t>(count)), count == 1 ? "names" : "name",
                            count == 1 ? "it holds" : "they hold");
}

// What is wrong and what to do about it; shown first, because it is what people look for.
std::string adviceLines(const SAccount& account, const SAdvice& advice) {
    std::vector<std::string> names;
    for (const SShortage& shortage : account.shortages) {
        names.push_back(asPrintable(account.configurations[shortage.configuration].first));
    }
    const bool isOne = names.size() == 1;
    std::string text = fmt::format("{} {} no free target\n", fmt::join(names, ", "), isOne ? "has" : "have");
    if (!advice.neededChanges.empty()) {
        text += fmt::format("Without new targets: {} ({})\n", inWords(advice.neededChanges),
                            wouldBeReleased(advice.released));
        text += howToDelete(advice.neededChanges);
    } else {
        text += "Without new targets: nothing helps, whichever backups are deleted\n";
    }
    if (advice.releasedWithTargets.has_value()) {
        text += fmt::format("With new targets: add one to {} ({})\n", isOne ? "it" : "each of them",
                            wouldBeReleased(*advice.releasedWithTargets));
    }
    return text + unknownTargetsLine(account);
}

std::string resultOf(const STrial& trial) {
    const std::string change =
        trial.change.kind == EChange::kAllowRotation ? "if its rotation is allowed," : "if it is deleted,";
    if (!trial.released.has_value()) {
        return change + " a target is still missing";
    }
    constexpr std::size_t kMostNames = 4;
    std::vector<std::string> names;
    for (const std::string& file : *trial.released) {
        if (names.size() == kMostNames) {
            names.push_back(fmt::format("and {} more", trial.released->size() - kMostNames));
            break;
        }
        names.push_back(asPrintable(file));
    }
    return fmt::format("{} {}{}{}", change, wouldBeReleased(*trial.released), names.empty() ? "" : ": ",
                       fmt::join(names, ", "));
}

std::string trialsTable(const SAccount& account, const SAdvice& advice) {
    std::string text;
    for (const SShortage& shortage : account.shortages) {
        const SAccountConfiguration& configuration = account.configurations[shortage.configuration];
        text += fmt::format("\nTargets of {}\n", asPrintable(configuration.first));
        if (shortage.targets.empty()) {
            text += "  none\n";
        }
        for (const SHeldTarget& held : shortage.targets) {
            const std::string& file = account.backups[held.holder].file;
            const auto trial = std::find_if(advice.trials.begin(), advice.trials.end(),
                                            [&file](const STrial& each) { return each.change.file == file; });
            text += fmt::format("  {} is held by {}, {}\n    {}\n",
                                asPrintable(configuration.targets[held.target]), asPrintable(file),
                                held.isExcluded ? "excluded from rotation" : "invalid, so never released",
                                trial != advice.trials.end() ? resultOf(*trial) : "not tried");
        }
    }
    return text;
}

std::string toList(const char* heading, const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) {
        list += fmt::format("  {}\n", asPrintable(text));
    }
    return list.empty() ? list : fmt::format("\n{}\n{}", heading, list);
}

std::string placeOf(const SLoggedCall& call) {
    const SLogPlace& first = call.first;
    const SLogPlace& last = call.last;
    if (call.isBeginningMissing) {
        // Lines before `first` may be its, too, but say nothing of it.
        return fmt::format("{}, up to line {}", asPrintable(last.log), last.line);
    }
    if (first.logNumber != last.logNumber) {
        return fmt::format("{}, line {}, to {}, line {}", asPrintable(first.log), first.line,
                           asPrintable(last.log), last.line);
    }
    return fmt::format("{}, lines {} to {}", asPrintable(first.log), first.line, last.line);
}

std::string timeOf(const SLoggedCall& call) {
    if (call.first.time.empty()) {
        return "";
    }
    return call.first.time == call.last.time
               ? fmt::format("Time: {}\n", asPrintable(call.first.time))
               : fmt::format("Time: {} to {}\n", asPrintable(call.first.time), asPrintable(call.last.time));
}

constexpr std::string_view kFirstBackup = "none; this is the first backup";

// What is said when no backup is known of the call. A host library's call without backups has the same trace
// as one all of whose documents it left out.
std::string_view withoutBackups(const SLoggedCall& call) {
    if (call.areBackupsKnown) {
        return kFirstBackup;
    }
    return call.missing.empty() ? "none was read" : "not known";
}

// `areAllKnown` is false when lines are missing from a log, so that the call may have had more backups.
// `ifNone` is said instead of a table of none.
std::string outcomeTables(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice,
                          bool areAllKnown, std::string_view ifNone, std::size_t width, bool colour) {
    const Backups shown = view.shownBackups(outcome);
    std::string text = selectionTable(outcome, width, colour);
    if (advice.has_value()) {
        text += adviceLines(*outcome.account, *advice) + trialsTable(*outcome.account, *advice);
    }
    text += "\n" + backupTable(outcome, shown, areAllKnown, ifNone, width, colour);
    if (view.withReasons && outcome.account.has_value()) {
        text += shown.empty() ? "" : "\n" + reasonTable(outcome, shown);
        text += advice.has_value() ? "" : shortageTable(*outcome.account);
    }
    return text;
}

// The library's trace says nothing of a document that it ignored.
std::vector<std::string> messagesOf(const SOutcome& outcome) {
    std::vector<std::string> messages = messagesInWords(outcome);
    const auto ignored = std::count_if(outcome.backups.begin(), outcome.backups.end(),
                                       [](const SBackupOutcome& backup) { return !backup.isLoaded; });
    if (ignored != 0 && outcome.selection.has_value()) {
        messages.push_back(
            fmt::format("{} ignored; the chosen targets may hold the snapshots of {}",
                        ignored == 1 ? "1 document was" : fmt::format("{} documents were", ignored),
                        ignored == 1 ? "its backup" : "their backups"));
    }
    return messages;
}

}  // namespace

std::string toTables(const SOutcome& outcome, const SView& view, const std::optional<SAdvice>& advice,
                     std::size_t width, bool colour) {
    return outcomeTables(outcome, view, advice, isEndKnown(outcome), kFirstBackup, width, colour);
}

std::string toTables(const SLoggedCall& call, const SView& view, std::size_t width, bool colour) {
    const SOutcome& outcome = call.outcome;
    return fmt::format("Call {}, {}\n", call.number, placeOf(call)) + timeOf(call) +
           toList("Missing from the log", call.missing) + "\n" +
           (outcome.account.has_value() ? outcomeTables(outcome, view, std::nullopt, call.areBackupsKnown,
                                                        withoutBackups(call), width, colour)
                                        : "Selection: none\n") +
           toList("Messages", messagesOf(outcome));
}

}  // namespace fi_rotate
