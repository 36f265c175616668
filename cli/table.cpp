#include "cli/table.h"

#include <cstddef>
#include <utility>
#include <vector>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/columns.h"
#include "cli/printable.h"

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

std::string selectionTable(const SOutcome& outcome, bool colour) {
    if (!outcome.selection.has_value()) {
        return "Selection: none\n";
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
    return "Selection\n" + toTable(rows, colour);
}

std::string backupTable(const SOutcome& outcome, bool colour) {
    const std::size_t hidden = outcome.hiddenBackups;
    if (outcome.backups.empty()) {
        return hidden == 0 ? "Backups: none, this is the first\n"
                           : fmt::format("Backups: none in these states, {} in others\n", hidden);
    }
    std::vector<Row> rows{toRow({"file", "time stamp", "flags", "state"}, fmt::emphasis::bold)};
    for (const SBackup& backup : outcome.backups) {
        Row row = toRow({asPrintable(backup.file),
                         backup.timeStamp.empty() ? "-" : asPrintable(backup.timeStamp),
                         fmt::to_string(backup.flagWord)});
        const auto state = stateWord(backup);
        row.push_back(state.has_value() ? SCell{std::string(*state), styleOf(*state)}
                                        : SCell{"-", {}});
        rows.push_back(std::move(row));
    }
    return "Backups\n" + toTable(rows, colour) +
           (hidden == 0 ? "" : fmt::format("  ({} in other states)\n", hidden));
}

const char* withoutReason(const SBackup& backup) {
    return backup.loaded ? "the call ended before one was known" : "took no part";
}

std::string reasonTable(const SOutcome& outcome) {
    std::string text = "Reasons\n";
    for (const SBackup& backup : outcome.backups) {
        const SReason* const reason = reasonOf(outcome, backup);
        text += fmt::format(
            "  {}\n    {}: {}\n", asPrintable(backup.file), stateWord(backup).value_or("no state"),
            reason == nullptr ? withoutReason(backup) : asPrintable(inWords(*reason)));
    }
    return text;
}

std::string shortageTable(const std::vector<SShortage>& shortages) {
    std::string text;
    for (const SShortage& shortage : shortages) {
        text += fmt::format("\n{} has no free target\n", asPrintable(shortage.configuration));
        if (shortage.targets.empty()) {
            text += "  it has no further targets at all; one must be added\n";
        }
        for (const SHeldTarget& held : shortage.targets) {
            text += fmt::format(
                "  {} is held by {}, {}\n", asPrintable(held.target), asPrintable(held.holder),
                held.isExcluded ? "which is excluded; without that it would be rotated"
                                : "which is invalid; it is free when that backup is gone");
        }
    }
    return text;
}

}  // namespace

std::string toTables(const SOutcome& outcome, bool colour) {
    std::string text = selectionTable(outcome, colour) + "\n" + backupTable(outcome, colour);
    if (outcome.account.has_value() && !outcome.backups.empty()) {
        text += "\n" + reasonTable(outcome) + shortageTable(outcome.account->shortages);
    }
    return text;
}

}  // namespace fi_rotate
