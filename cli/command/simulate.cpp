#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "cli/base/terminal.h"
#include "cli/base/text.h"
#include "cli/command/command.h"
#include "cli/command/outputs.h"
#include "cli/command/subcommands.h"
#include "cli/outcome/failure_words.h"
#include "cli/picture/svg.h"
#include "cli/simulate/csv.h"
#include "cli/simulate/json.h"
#include "cli/simulate/picture.h"
#include "cli/simulate/report.h"
#include "cli/simulate/table.h"
#include "cli/simulate/timeline.h"

namespace fi_rotate {
namespace {

constexpr const char* kFooter = R"(Example:
  fi-rotate simulate --config-file examples/resource.conf --rounds 90 --every 24h --start 2026-10-01 \
      --exclude-every 7

Each round is one call of the library with all backups that still hold their targets; then a new backup is taken
on the chosen targets. A rotated backup is removed. An excluded backup is kept forever, or for the time given with
--exclude-for. fi-rotate(1) says more.)";

struct SOptions {
    SCallOptions call;
    std::size_t rounds = 0;
    std::string every;
    std::string start;
    std::optional<std::size_t> excludedEvery;
    std::optional<std::string> excludedWeekday;
    std::optional<std::string> excludedFor;
    std::vector<std::string> from;
    std::vector<std::string> excluded;
    std::optional<std::string> goal;
    bool isWithoutTimeline = false;
    bool json = false;
    std::optional<std::string> csvFile;
    std::optional<std::string> svgFile;
    bool isForced = false;
};

template <typename Value>
Value valueOf(const std::string& option, const std::string& text, const std::optional<Value>& value,
              const char* wanted) {
    if (!value.has_value()) {
        throw CLI::ValidationError(option, printableInQuotes(text) + " is not " + wanted);
    }
    return *value;
}

constexpr const char* kDuration = "a whole number with one of the units s, m, h, d, w, like 24h";

std::vector<SBackup> backupsOf(const SOptions& options) {
    std::vector<SBackup> backups;
    for (const std::string& file : options.from) {
        backups.push_back({file, 0});
    }
    for (const std::string& file : options.excluded) {
        const auto found = std::find_if(backups.begin(), backups.end(),
                                        [&file](const SBackup& backup) { return backup.file == file; });
        if (found == backups.end()) {
            throw CLI::ValidationError("--exclude",
                                       printableInQuotes(file) +
                                           " is not among the documents of --from; write its name exactly as "
                                           "there, and repeat --exclude for each file");
        }
        found->flagWord |= FI_EXCLUDE_ROTATION;
    }
    return backups;
}

SPlan planOf(const SOptions& options) {
    SPlan plan;
    plan.configuration = readCallWithoutNul(options.call).configuration;
    plan.rounds = options.rounds;
    plan.every = valueOf("--every", options.every, parseDuration(options.every), kDuration);
    plan.start = valueOf("--start", options.start, parseTime(options.start),
                         "a date like 2026-10-01 or 2026-10-01T01:30");
    plan.excludedEvery = options.excludedEvery;
    if (options.excludedWeekday.has_value()) {
        plan.excludedWeekday =
            valueOf("--exclude-weekday", *options.excludedWeekday, parseWeekday(*options.excludedWeekday),
                    "a day of the week like sunday or sun; give only one");
    }
    if (options.excludedFor.has_value()) {
        plan.excludedFor =
            valueOf("--exclude-for", *options.excludedFor, parseDuration(*options.excludedFor), kDuration);
        if (!options.excludedEvery.has_value() && !options.excludedWeekday.has_value() &&
            options.excluded.empty()) {
            throw CLI::ValidationError("--exclude-for",
                                       "needs --exclude-every, --exclude-weekday or --exclude too");
        }
    }
    plan.from = backupsOf(options);
    if (static_cast<std::int64_t>(plan.rounds - 1) > (lastTime() - plan.start) / plan.every) {
        throw CLI::ValidationError(
            "--rounds",
            "the last round would be after the year 9999; give fewer rounds or a shorter --every");
    }
    return plan;
}

std::optional<std::int64_t> goalOf(const SOptions& options, const SPlan& plan) {
    if (!options.goal.has_value()) {
        return std::nullopt;
    }
    const std::int64_t days = valueOf("--keep-days", *options.goal, parseDuration(*options.goal + "d"),
                                      "a whole number of days above 0, without a unit");
    const auto least = roundsUntilSettled(plan, days);
    if (least.has_value() && plan.rounds < *least) {
        throw CLI::ValidationError("--keep-days",
                                   fmt::format("to find the targets for {} days, give at least {} --rounds",
                                               days / kSecondsPerDay, *least));
    }
    return days;
}

// A std::invalid_argument means that the configuration cannot be used; its text may be a line of the trace.
SSimulation simulateOrRefuse(const SOptions& options, const SPlan& plan,
                             const ContinueCallback& mayContinue) {
    try {
        return simulate(plan, mayContinue);
    } catch (const CUnusableDocuments& fault) {
        throw CLI::ValidationError("--from", std::string("these documents cannot be used\n") + fault.what());
    } catch (const std::invalid_argument& fault) {
        throw CLI::ValidationError(options.call.configuration.has_value() ? "--config" : "--config-file",
                                   asPrintable(failureInWords(fault.what())));
    }
}

SSimulationReport makeReport(const SOptions& options, const CInterrupt& interrupt) {
    const SPlan plan = planOf(options);
    SSimulationReport report;
    report.goal = goalOf(options, plan);
    CProgress progress;
    report.simulation = simulateOrRefuse(options, plan, [&](const SSimulation& soFar) {
        progress.show(soFar.finishedRounds, plan.rounds, "rounds");
        return !interrupt.signal().has_value();
    });
    report.summaries = summarise(report.simulation);
    if (report.goal.has_value()) {
        for (const SAccountConfiguration& configuration : report.simulation.configurations) {
            report.fewestTargets.push_back(findFewestTargets(
                plan, configuration, *report.goal, [&](std::size_t targets, std::size_t rounds) {
                    progress.show(rounds, plan.rounds, fmt::format("rounds with {} targets", targets));
                    return !interrupt.signal().has_value();
                }));
        }
    }
    return report;
}

std::string toText(const SSimulationReport& report, bool isWithoutTimeline) {
    std::string text = toSummary(report, widthOfOutput(), wantsColour());
    if (!isWithoutTimeline) {
        // In a file only the timeline is cut, because the number of its columns has no limit.
        const std::string timeline = toTimeline(report.simulation, widthOfTerminal(STDOUT_FILENO));
        text += (timeline.empty() ? "" : "\n") + timeline;
    }
    return text;
}

int runSimulate(const SOptions& options) {
    const CInterrupt interrupt;
    const SOutput rounds{"--csv", options.csvFile, isOwnTable};
    const SOutput picture{"--svg", options.svgFile, isOwnPicture};
    std::vector<std::string> inputs = inputsOf(options.call);
    inputs.insert(inputs.end(), options.from.begin(), options.from.end());
    requireNoFileIsDestroyed({rounds, picture}, inputs, options.isForced);
    const auto csv = openOutput(rounds);
    const auto svg = openOutput(picture);
    const SSimulationReport report = makeReport(options, interrupt);
    if ((csv != nullptr && !writeAndCommitOrReport(*csv, toCsv(report.simulation))) ||
        (svg != nullptr && !writeAndCommitOrReport(*svg, toSvg(pictureOf(report.simulation))))) {
        return kExitNotWritten;
    }
    if (!printOrReport(options.json ? toJson(report) : toText(report, options.isWithoutTimeline))) {
        return kExitNotWritten;
    }
    const auto signal = interrupt.signal();
    return signal.has_value() ? kExitSignal + *signal : kExitDone;
}

}  // namespace

void addSimulate(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<SOptions>();
    CLI::App& simulate = *app.add_subcommand(
        "simulate",
        "Simulate many backups, one after the other, and show how long targets keep their snapshots");
    setFooter(simulate, kFooter);

    addConfigurationOptions(simulate, "configuration", options->call);

    constexpr std::size_t kMostRounds = 100000000;
    CLI::Option* const rounds =
        simulate.add_option("--rounds", options->rounds, "Run N rounds")->type_name("N")->required();
    requireWholeNumber(*rounds, 1, kMostRounds);
    simulate.add_option("--every", options->every, "Set the time between two rounds, such as 24h")
        ->type_name("TIME")
        ->required();
    simulate
        .add_option("--start", options->start,
                    "Set the time of the first round, on the clock of the documents' time stamps")
        ->type_name("DATE")
        ->required();
    CLI::Option* const every = simulate
                                   .add_option("--exclude-every", options->excludedEvery,
                                               "Exclude the backup of every K-th round from rotation")
                                   ->type_name("K");
    requireWholeNumber(*every, 1, kMostRounds);
    simulate
        .add_option("--exclude-weekday", options->excludedWeekday,
                    "Exclude all backups of this day of the week from rotation")
        ->type_name("DAY")
        ->excludes(every);
    simulate
        .add_option("--exclude-for", options->excludedFor,
                    "End each exclusion after this time, such as 8w; without this option it never ends")
        ->type_name("TIME");
    CLI::Option* const from =
        simulate.add_option("--from", options->from, "Begin with the backups of these documents")
            ->type_name("FILE");
    simulate.add_option("--exclude", options->excluded, "Exclude this backup of --from from rotation")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->needs(from);
    simulate
        .add_option("--keep-days", options->goal,
                    "Find the fewest targets that keep every snapshot for so many days")
        ->type_name("GOAL")
        ->excludes(from);
    CLI::Option* const noTimeline =
        simulate.add_flag("--no-timeline", options->isWithoutTimeline, "Show only the summary");
    simulate.add_flag("--json", options->json, "Show the summary as one JSON document")->excludes(noTimeline);
    simulate.add_option("--csv", options->csvFile, "Write a CSV file with a line for each round")
        ->type_name("FILE");
    simulate.add_option("--svg", options->svgFile, "Draw the snapshots as an SVG picture in a file")
        ->type_name("FILE");

    addForceOption(simulate, options->isForced);

    simulate.callback([options, &exitStatus] {
        try {
            exitStatus = runSimulate(*options);
        } catch (const CLibraryFailure& failure) {
            printError(failure.what());
            exitStatus = kExitException;
        }
    });
}

}  // namespace fi_rotate
