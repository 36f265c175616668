#include "cli/simulation_table.h"

#include <fmt/format.h>

#include "cli/calendar.h"
#include "cli/columns.h"
#include "cli/printable.h"

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

std::string configurationTable(const SSimulationReport& report, bool colour) {
    Row heading = toRow({"configuration", "targets", "taken", "rotated", "held", "lost",
                         "least age", "median", "most"},
                        fmt::emphasis::bold);
    if (report.goal.has_value()) {
        heading.push_back({"needs", fmt::emphasis::bold});
    }
    std::vector<Row> rows{heading};
    for (std::size_t i = 0; i < report.summaries.size(); ++i) {
        const SConfigurationSummary& summary = report.summaries[i];
        const auto& ages = summary.ages;
        Row row = toRow({asPrintable(summary.first), fmt::to_string(summary.targets),
                         fmt::to_string(summary.taken), fmt::to_string(summary.rotated),
                         fmt::to_string(summary.held), fmt::to_string(summary.lost),
                         ages.has_value() ? toShownDays(ages->minimum) : "-",
                         ages.has_value() ? toShownDays(ages->median) : "-",
                         ages.has_value() ? toShownDays(ages->maximum) : "-"});
        if (report.goal.has_value()) {
            row.push_back({inWords(report.leastTargets[i]), {}});
        }
        rows.push_back(row);
    }
    return toTable(rows, colour);
}

std::string standstillLines(const SSimulationReport& report) {
    const SSimulation& simulation = report.simulation;
    if (!simulation.standstill.has_value()) {
        return "Every round found a target\n";
    }
    const std::size_t first = simulation.standstill->first;
    const std::size_t count = simulation.finishedRounds + 1 - first;
    std::string text =
        fmt::format("No target was found from round {} on ({}), in {} of {} rounds\n", first,
                    toShownTime(timeOf(simulation.plan, first)), count, simulation.finishedRounds);
    for (const SConfigurationSummary& summary : report.summaries) {
        if (summary.roundsShort != 0) {
            text += fmt::format("  {}: {}\n", asPrintable(summary.first),
                                shortageInWords(summary.shortage));
        }
    }
    return text;
}

}  // namespace

std::string toSummary(const SSimulationReport& report, bool colour) {
    std::string text = headline(report.simulation);
    if (report.simulation.finishedRounds != 0) {
        text += configurationTable(report, colour) + "\n" + standstillLines(report);
    }
    return text;
}

}  // namespace fi_rotate
