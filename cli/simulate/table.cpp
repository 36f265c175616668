#include "cli/simulate/table.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/simulate/timeline.h"

namespace fi_rotate {
namespace {

std::string inWords(const SFewestTargets& least) {
    switch (least.search) {
        case ESearch::kFound:
            return fmt::to_string(least.targets);
        case ESearch::kNever:
            return "impossible";
        case ESearch::kNoLimit:
            return "no limit";
        case ESearch::kStopped:
            return "not known";
    }
    return "";
}

std::string headline(const SSimulation& simulation) {
    const SPlan& plan = simulation.plan;
    if (simulation.finishedRounds == 0) {
        return "No round was finished\n";
    }
    const std::string rounds =
        simulation.finishedRounds < plan.rounds
            ? fmt::format("{} of {} rounds, interrupted", simulation.finishedRounds, plan.rounds)
            : fmt::format(plan.rounds == 1 ? "{} round" : "{} rounds", plan.rounds);
    const std::string first = toShownTime(plan.start);
    const std::string last = toShownTime(timeOf(plan, simulation.finishedRounds));
    return rounds + ": " + (simulation.finishedRounds == 1 ? first : first + " to " + last) + "\n";
}

Row headingOf(const SSimulationReport& report) {
    Row row = toRow({"configuration", "targets"});
    if (!report.simulation.takenOver.empty()) {
        row.push_back({"there before", {}});
    }
    for (const char* text : {"taken", "rotated", "held"}) {
        row.push_back({text, {}});
    }
    if (report.simulation.hasLost) {
        row.push_back({"lost", {}});
    }
    for (const char* text : {"age min", "median", "max"}) {
        row.push_back({text, {}});
    }
    if (report.goal.has_value()) {
        row.push_back({fmt::format("targets for {}", toShownDays(*report.goal)), {}});
    }
    for (SCell& cell : row) {
        cell.style = fmt::emphasis::bold;
    }
    return row;
}

Row rowOf(const SSimulationReport& report, std::size_t i) {
    const SConfigurationSummary& summary = report.summaries[i];
    Row row = toRow({asPrintable(summary.first), fmt::to_string(summary.targets)});
    if (!report.simulation.takenOver.empty()) {
        row.push_back({fmt::to_string(summary.takenOver), {}});
    }
    for (const std::size_t count : {summary.taken, summary.rotated, summary.held}) {
        row.push_back({fmt::to_string(count), {}});
    }
    if (report.simulation.hasLost) {
        row.push_back({fmt::to_string(summary.lost), {}});
    }
    for (const auto which : {&SAges::minimum, &SAges::median, &SAges::maximum}) {
        row.push_back({summary.ages.has_value() ? toShownDays((*summary.ages).*which) : "-", {}});
    }
    if (report.goal.has_value()) {
        row.push_back({inWords(report.fewestTargets[i]), {}});
    }
    return row;
}

std::string configurationTable(const SSimulationReport& report, std::size_t width, bool colour) {
    std::vector<Row> rows{headingOf(report)};
    for (std::size_t i = 0; i < report.summaries.size(); ++i) {
        rows.push_back(rowOf(report, i));
    }
    return toTable(std::move(rows), width, colour);
}

std::string roundInWords(const SPlan& plan, std::size_t round) {
    return fmt::format("round {} ({})", round, toShownTime(timeOf(plan, round)));
}

std::string inWords(const SPlan& plan, const SKept& kept) {
    return fmt::format("{} in {}", kept.count, roundInWords(plan, kept.round));
}

std::string fewestKeptLines(const SSimulationReport& report) {
    const SPlan& plan = report.simulation.plan;
    std::string text;
    for (const SConfigurationSummary& summary : report.summaries) {
        const auto& [sinceFirstBackup, sinceRotation] = summary.fewestKept;
        if (sinceFirstBackup.has_value()) {
            text += fmt::format("  {}: {}", asPrintable(summary.first), inWords(plan, *sinceFirstBackup));
            text += sinceRotation.has_value() && sinceRotation->count != sinceFirstBackup->count
                        ? fmt::format(", since the first rotation {}\n", inWords(plan, *sinceRotation))
                        : "\n";
        }
    }
    return text.empty() ? "" : "Fewest restore points after the call of a round\n" + text + "\n";
}

std::string lostLine(const SSimulationReport& report) {
    std::size_t lost = 0;
    std::size_t taken = 0;
    for (const SConfigurationSummary& summary : report.summaries) {
        lost += summary.lost;
        taken += summary.takenOver + summary.taken;
    }
    return lost == 0
               ? ""
               : fmt::format("{} of {} snapshots were lost: later rounds overwrote them\n", lost, taken);
}

std::string foundLine(const SSimulation& simulation) {
    // A round that overwrites a snapshot has not found a free target.
    if (simulation.hasLost) {
        return "";
    }
    return simulation.finishedRounds < simulation.plan.rounds ? "Every finished round found a target\n"
                                                              : "Every round found a target\n";
}

// "3, 7 to 9 and more".
std::string listWithoutTarget(const SSimulation& simulation) {
    constexpr std::size_t kMostShown = 5;
    const auto& all = simulation.withoutTarget;
    std::string text;
    std::size_t shown = 0;
    for (std::size_t i = 0; i < all.size(); ++shown) {
        if (shown == kMostShown) {
            return text + " and more";
        }
        const std::size_t first = all[i].first;
        std::size_t last = all[i].last;
        for (++i; i < all.size() && all[i].first == last + 1; ++i) {
            last = all[i].last;
        }
        text += (text.empty() ? "" : ", ") + shownRounds(first, last);
    }
    return text;
}

std::string whenShort(const SConfigurationSummary& summary) {
    return summary.roundsShort == 1
               ? fmt::format(" (round {})", summary.firstShort)
               : fmt::format(" ({} rounds, the first is {})", summary.roundsShort, summary.firstShort);
}

std::string withoutTargetLines(const SSimulationReport& report) {
    const SSimulation& simulation = report.simulation;
    const std::size_t count = countRoundsWithoutTarget(simulation);
    if (count == 0) {
        return foundLine(simulation);
    }
    const std::size_t first = simulation.withoutTarget.front().first;
    const bool isForTheRest = firstRoundOfStandstill(simulation) == first;
    std::string text =
        isForTheRest
            ? fmt::format("No target was found from round {} on ({}), in {} of {} rounds\n", first,
                          toShownTime(timeOf(simulation.plan, first)), count, simulation.finishedRounds)
            : fmt::format("No target was found in {} of {} rounds: {}\n", count, simulation.finishedRounds,
                          listWithoutTarget(simulation));
    for (const SConfigurationSummary& summary : report.summaries) {
        if (summary.roundsShort != 0) {
            const bool isAsSaid = isForTheRest && summary.roundsShort == count;
            text += fmt::format("  {}{}: {}\n", asPrintable(summary.first),
                                isAsSaid ? "" : whenShort(summary), shortageInWords(summary.holders));
        }
    }
    return text;
}

std::string noLimitLine(const SSimulationReport& report) {
    const auto& all = report.fewestTargets;
    const bool hasNoLimit = std::any_of(all.begin(), all.end(), [](const SFewestTargets& least) {
        return least.search == ESearch::kNoLimit;
    });
    return hasNoLimit ? "No number of targets stays enough: each excluded backup keeps its target forever\n"
                      : "";
}

std::string resultInWords(const SSimulation& simulation, const STakenOver& backup) {
    if (!backup.whyInvalid.empty()) {
        return "invalid, not used: " + asPrintable(backup.whyInvalid);
    }
    switch (backup.end) {
        case EEnd::kRotated:
            return fmt::format("rotated in {}", roundInWords(simulation.plan, backup.ended));
        case EEnd::kLost:
            return fmt::format("lost in {}", roundInWords(simulation.plan, backup.ended));
        default:
            return fmt::format("held after round {}", simulation.finishedRounds);
    }
}

// The letter of a backup of SPlan::from in the timeline; a dash when it has no snapshot.
std::string letterOf(const SSimulation& simulation, const std::vector<char>& letters, std::size_t document) {
    // Those of the rounds come behind those of documents, and may be millions.
    const auto found = std::find_if(simulation.snapshots.begin(), simulation.snapshots.end(),
                                    [document](const SSnapshot& snapshot) {
                                        return snapshot.taken != 0 || snapshot.document == document;
                                    });
    return found == simulation.snapshots.end() || found->taken != 0
               ? "-"
               : std::string(1, letters[static_cast<std::size_t>(found - simulation.snapshots.begin())]);
}

std::string takenOverTable(const SSimulation& simulation, std::size_t width, bool colour) {
    if (simulation.takenOver.empty()) {
        return "";
    }
    std::vector<Row> rows{toRow({"document", "name", "letter", "taken", "excluded", "snapshots", "result"},
                                fmt::emphasis::bold)};
    const std::vector<char> letters = lettersOf(simulation);
    std::size_t invalid = 0;
    for (std::size_t i = 0; i < simulation.takenOver.size(); ++i) {
        const SBackup& given = simulation.plan.from[i];
        const STakenOver& backup = simulation.takenOver[i];
        invalid += backup.whyInvalid.empty() ? 0U : 1U;
        rows.push_back(
            toRow({asPrintable(given.file), fmt::format("d{}", i + 1), letterOf(simulation, letters, i),
                   backup.time.has_value() ? toShownTime(*backup.time) : "-",
                   (given.flagWord & FI_EXCLUDE_ROTATION) != 0 ? "yes" : "no",
                   fmt::to_string(backup.snapshots), resultInWords(simulation, backup)}));
    }
    const std::size_t all = simulation.takenOver.size();
    return fmt::format("\nThe rounds began with the backups of {} of {} documents\n", all - invalid, all) +
           toTableOrLists(rows, width, colour);
}

}  // namespace

std::string toSummary(const SSimulationReport& report, std::size_t width, bool colour) {
    std::string text = headline(report.simulation);
    if (report.simulation.finishedRounds != 0) {
        text += configurationTable(report, width, colour) + "\n" + fewestKeptLines(report) +
                lostLine(report) + withoutTargetLines(report) + noLimitLine(report) +
                takenOverTable(report.simulation, width, colour);
    }
    return text;
}

}  // namespace fi_rotate
