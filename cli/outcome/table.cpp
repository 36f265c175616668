#include "cli/outcome/table.h"

#include <cstddef>
#include <utility>
#include <vector>

#include <fmt/color.h>
#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"

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

// Only of a call in a log it may be unknown what it came to.
bool isOver(const SOutcome& outcome) {
    return outcome.status.has_value() || outcome.exception.has_value();
}

std::string withoutSelection(const SOutcome& outcome) {
    if (outcome.status == FI_STATUS_SUCCESS) {
        return "Selection: made, but the trace of a first backup does not tell which\n";
    }
    return isOver(outcome) ? "Selection: none\n" : "Selection: not known\n";
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
        return "Selection: empty, since there is no configuration\n";
    }
    std::vector<Row> rows{toRow({"first target", "chosen target"}, fmt::emphasis::bold)};
    for (const SChoice& choice : *chosen) {
        rows.push_back(toRow({asPrintable(choice.first), asPrintable(choice.chosen)}));
    }
    return "Selection\n" + toTableOrLists(rows, width, colour);
}

using Backups = std::vector<const SBackupOutcome*>;

std::string backupTable(const SOutcome& outcome, const Backups& shown, std::size_t width, bool colour) {
    const std::size_t hidden = outcome.backups.size() - shown.size();
    if (shown.empty() && hidden != 0) {
        return fmt::format("Backups: none in these states, {} in others\n", hidden);
    }
    if (shown.empty()) {
        return isOver(outcome) ? "Backups: none, this is the first\n" : "Backups: none known\n";
    }
    std::vector<Row> rows{toRow({"file", "time stamp", "flags", "state"}, fmt::emphasis::bold)};
    for (const SBackupOutcome* const backup : shown) {
        Row row = toRow({asPrintable(backup->given.file),
                         backup->timeStamp.empty() ? "-" : asPrintable(backup->timeStamp),
                         fmt::to_string(backup->given.flagWord)});
        const auto state = stateWord(*backup);
        row.push_back(state.has_value() ? SCell{std::string(*state), styleOf(*state)} : SCell{"-", {}});
        rows.push_back(std::move(row));
    }
    return "Backups\n" + toTableOrLists(rows, width, colour) +
           (hidden == 0 ? "" : fmt::format("  ({} in other states)\n", hidden));
}

std::string reasonFor(const SBackupOutcome& backup) {
    if (!backup.reason.has_value()) {
        return backup.isLoaded ? "not known" : "took no part";
    }
    return asPrintable(inWords(*backup.reason));
}

std::string reasonTable(const Backups& shown) {
    std::string text = "Reasons\n";
    for (const SBackupOutcome* const backup : shown) {
        text += fmt::format("  {}\n    {}: {}\n", asPrintable(backup->given.file),
                            stateWord(*backup).value_or("no state"), reasonFor(*backup));
    }
    return text;
}

std::string shortageTable(const SAccount& account) {
    std::string text;
    for (const SShortage& shortage : account.shortages) {
        const SAccountConfiguration& configuration = account.configurations[shortage.configuration];
        text += fmt::format("\n{} has no free target\n", asPrintable(configuration.first));
        if (shortage.targets.empty()) {
            text += "  it has no further targets at all; one must be added\n";
        }
        for (const SHeldTarget& held : shortage.targets) {
            text += fmt::format("  {} is held by {}, {}\n", asPrintable(configuration.targets[held.target]),
                                asPrintable(account.backups[held.holder].file),
                                held.isExcluded ? "which is excluded; without that it would be rotated"
                                                : "which is invalid; it is free when that backup is gone");
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

}  // namespace

std::string toTables(const SOutcome& outcome, const SView& view, std::size_t width, bool colour) {
    const Backups shown = view.backupsOf(outcome);
    std::string text =
        selectionTable(outcome, width, colour) + "\n" + backupTable(outcome, shown, width, colour);
    if (view.withReasons && outcome.account.has_value() && !shown.empty()) {
        text += "\n" + reasonTable(shown) + shortageTable(*outcome.account);
    }
    return text;
}

std::string toTables(const SLoggedCall& call, const SView& view, std::size_t width, bool colour) {
    const SOutcome& outcome = call.outcome;
    return fmt::format("Call {}, lines {} to {}\n\n", call.number, call.firstLine, call.lastLine) +
           (outcome.account.has_value() ? toTables(outcome, view, width, colour) : "Selection: none\n") +
           toList("Messages", outcome.messages) + toList("Missing from the log", call.missing);
}

}  // namespace fi_rotate
