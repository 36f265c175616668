#include "cli/simulate/table.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "cli/base/calendar.h"
#include "cli/base/columns.h"
#include "cli/base/text.h"

namespace fi_rotate {
namespace {

std::string inWords(const SLeastTargets& least) {
    switch (least.search) {
        case ESearch::kFound:
            return fmt::to_string(least.targets);
        case ESearch::kNever:
            return "no number";
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
            : fmt::format("{} rounds", plan.rounds);
    return fmt::format("{}: {} to {}\n", rounds, toShownTime(plan.start),
                       toShownTime(timeOf(plan, simulation.finishedRounds)));
}

Row headingOf(const SSimulationReport& report) {
    Row row = toRow({"configuration", "targets", "taken", "rotated", "held"});
    if (report.simulation.hasLost) {
        row.push_back({"lost", {}});
    }
    for (const char* text : {"age min", "median", "max"}) {
        row.push_back({text, {}});
    }
    if (report.goal.has_value()) {
        row.push_back({"needs", {}});
    }
    for (SCell& cell : row) {
        cell.style = fmt::emphasis::bold;
    }
    return row;
}

Row rowOf(const SSimulationReport& report, std::size_t i) {
    const SConfigurationSummary& summary = report.summaries[i];
    Row row =
        toRow({asPrintable(summary.first), fmt::to_string(summary.targets), fmt::to_string(summary.taken),
               fmt::to_string(summary.rotated), fmt::to_string(summary.held)});
    if (report.simulation.hasLost) {
        row.push_back({fmt::to_string(summary.lost), {}});
    }
    for (const auto which : {&SAges::minimum, &SAges::median, &SAges::maximum}) {
        row.push_back({summary.ages.has_value() ? toShownDays((*summary.ages).*which) : "-", {}});
    }
    if (report.goal.has_value()) {
        row.push_back({inWords(report.leastTargets[i]), {}});
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

std::string lostLine(const SSimulationReport& report) {
    std::size_t lost = 0;
    std::size_t taken = 0;
    for (const SConfigurationSummary& summary : report.summaries) {
        lost += summary.lost;
        taken += summary.taken;
    }
    return lost == 0
               ? ""
               : fmt::format("{} of {} snapshots were lost: later rounds overwrote them\n", lost, taken);
}

std::string standstillLines(const SSimulationReport& report) {
    const SSimulation& simulation = report.simulation;
    if (!simulation.standstill.has_value()) {
        // A round that overwrites a snapshot has not found a target to take.
        if (simulation.hasLost) {
            return "";
        }
        return simulation.finishedRounds < simulation.plan.rounds ? "Every finished round found a target\n"
                                                                  : "Every round found a target\n";
    }
    const std::size_t first = simulation.standstill->first;
    const std::size_t count = simulation.finishedRounds + 1 - first;
    std::string text =
        fmt::format("No target was found from round {} on ({}), in {} of {} rounds\n", first,
                    toShownTime(timeOf(simulation.plan, first)), count, simulation.finishedRounds);
    for (const SConfigurationSummary& summary : report.summaries) {
        if (summary.roundsShort != 0) {
            text += fmt::format("  {}: {}\n", asPrintable(summary.first), shortageInWords(summary.holders));
        }
    }
    return text;
}

}  // namespace

std::string toSummary(const SSimulationReport& report, std::size_t width, bool colour) {
    std::string text = headline(report.simulation);
    if (report.simulation.finishedRounds != 0) {
        text += configurationTable(report, width, colour) + "\n" + lostLine(report) + standstillLines(report);
    }
    return text;
}

}  // namespace fi_rotate
