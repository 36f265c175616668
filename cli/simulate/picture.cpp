#include "cli/simulate/picture.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/base/calendar.h"
#include "cli/picture/arrange.h"
#include "cli/picture/layout.h"
#include "cli/picture/time_axis.h"
#include "cli/simulate/report.h"

namespace fi_rotate {
namespace {

// The rounds that are drawn.
struct SWindow {
    std::size_t first = 1;
    std::size_t last = 0;
};

SWindow windowOf(const SSimulation& simulation) {
    SWindow window;
    window.last = simulation.finishedRounds;
    if (const auto standstill = firstRoundOfStandstill(simulation); standstill.has_value()) {
        const std::size_t first = *standstill;
        constexpr std::size_t kAtLeast = 3;
        constexpr std::size_t kTwentieth = 20;
        window.last = std::min(window.last, first + std::max(kAtLeast, first / kTwentieth));
    }
    // With more rounds the bars would be too short for their numbers.
    constexpr std::size_t kMost = 150;
    window.first = window.last > kMost ? window.last - kMost + 1 : 1;
    return window;
}

const char* wordOf(EEnd end) {
    return end == EEnd::kRotated ? "rotated" : "lost";
}

std::string exclusionOf(const SSimulation& simulation, const SSnapshot& snapshot) {
    if (!isExcluded(simulation, snapshot)) {
        return "";
    }
    const auto& time = simulation.plan.excludedFor;
    return time.has_value() ? ", excluded from rotation for " + toShownDuration(*time)
                            : ", excluded from rotation";
}

std::string titleOf(const SSimulation& simulation, const SSnapshot& snapshot) {
    const auto& target = simulation.configurations[snapshot.configuration].targets[snapshot.target];
    const SPlan& plan = simulation.plan;
    const std::int64_t taken = timeOf(simulation, snapshot);
    const std::string backup =
        snapshot.taken == 0 ? plan.from[snapshot.document].file : fmt::format("round {}", snapshot.taken);
    const std::string text = fmt::format("{}: {}, taken {}{}, ", target, backup, toShownTime(taken),
                                         exclusionOf(simulation, snapshot));
    return text + (snapshot.end == EEnd::kHeld
                       ? "still held"
                       : fmt::format("{} in round {} after {}", wordOf(snapshot.end), snapshot.ended,
                                     toShownDays(timeOf(plan, snapshot.ended) - taken)));
}

EBar kindOf(const SSimulation& simulation, const SSnapshot& snapshot) {
    if (snapshot.end == EEnd::kLost) {
        return EBar::kInvalid;
    }
    return isExcluded(simulation, snapshot) ? EBar::kExcluded : EBar::kPlain;
}

SBar barOf(const SSimulation& simulation, const SSnapshot& snapshot, const SPicture& picture) {
    SBar bar;
    bar.from = std::max(static_cast<double>(timeOf(simulation, snapshot)), picture.from);
    bar.isOpen = snapshot.end == EEnd::kHeld;
    bar.to = bar.isOpen ? picture.to : static_cast<double>(timeOf(simulation.plan, snapshot.ended));
    bar.kind = kindOf(simulation, snapshot);
    bar.name =
        snapshot.taken == 0 ? fmt::format("d{}", snapshot.document + 1) : fmt::to_string(snapshot.taken);
    bar.title = titleOf(simulation, snapshot);
    return bar;
}

// From the time of its backup to the round in which the target was taken: in one bar as long as the backup
// holds the target, in another afterwards.
std::vector<SBar> barsOf(const SSimulation& simulation, const SUnprotected& target, const SPicture& picture) {
    const SPlan& plan = simulation.plan;
    const STakenOver& backup = simulation.takenOver[target.document];
    const auto placeOf = [&picture](std::int64_t time) {
        return std::clamp(static_cast<double>(time), picture.from, picture.to);
    };
    const std::optional<std::uint32_t> held = lastRoundHeld(simulation, target);
    const double begin = backup.time.has_value() ? placeOf(*backup.time) : picture.from;
    const double end = target.overwritten != 0 ? placeOf(timeOf(plan, target.overwritten)) : picture.to;
    const double free = !held.has_value() ? end : *held == 0 ? begin : placeOf(timeOf(plan, *held));
    const std::string title =
        fmt::format("{}: {}, invalid", simulation.configurations[target.configuration].targets[target.target],
                    plan.from[target.document].file);

    std::vector<SBar> bars;
    if (free > begin) {
        SBar& bar = bars.emplace_back();
        bar.from = begin;
        bar.to = free;
        bar.kind = EBar::kInvalid;
        bar.title = title + (held.has_value() ? fmt::format(", held until the call of round {}", *held)
                                              : ", still held");
    }
    if (end > free) {
        SBar& bar = bars.emplace_back();
        bar.from = free;
        bar.to = end;
        bar.kind = EBar::kUnprotected;
        bar.title = title + ", not held" +
                    (target.overwritten != 0 ? fmt::format(", chosen in round {}", target.overwritten) : "");
    }
    for (SBar& bar : bars) {
        bar.name = fmt::format("d{}", target.document + 1);
    }
    return bars;
}

// What the bars of invalid backups and those of lost snapshots mean, which look the same.
std::string invalidMeaningOf(const SSimulation& simulation) {
    std::vector<std::string> meanings;
    if (simulation.hasLost) {
        meanings.emplace_back("lost: overwritten by a later snapshot");
    }
    if (std::any_of(simulation.unprotected.begin(), simulation.unprotected.end(),
                    [](const SUnprotected& target) { return target.isHeldAtFirst; })) {
        meanings.emplace_back("held by an invalid backup");
    }
    return fmt::format("{}", fmt::join(meanings, ", or "));
}

// The time where the picture begins: that of the first snapshot or of the first round, whichever is earlier;
// if the first rounds are not drawn, that of the first drawn round.
std::int64_t beginOf(const SSimulation& simulation, const SWindow& window) {
    if (window.first > 1) {
        return timeOf(simulation.plan, window.first);
    }
    std::int64_t begin = simulation.plan.start;
    for (const SSnapshot& snapshot : simulation.snapshots) {
        begin = std::min(begin, timeOf(simulation, snapshot));
    }
    return begin;
}

// The configurations that are short after the last round.
std::vector<SShortConfiguration> shortagesOf(const SSimulation& simulation) {
    return firstRoundOfStandstill(simulation).has_value() ? simulation.withoutTarget.back().shortages
                                                          : std::vector<SShortConfiguration>();
}

std::vector<std::string> warningsOf(const SSimulation& simulation) {
    const auto standstill = firstRoundOfStandstill(simulation);
    if (!standstill.has_value()) {
        return {};
    }
    std::vector<std::string> shortOnes;
    for (const SShortConfiguration& shortage : shortagesOf(simulation)) {
        shortOnes.push_back(simulation.configurations[shortage.configuration].first);
    }
    return {fmt::format("No target is found from round {} to the end: {} {} no free target", *standstill,
                        someOf(shortOnes), shortOnes.size() == 1 ? "has" : "have")};
}

// The first drawn round that found no target.
std::optional<std::size_t> firstWithoutTarget(const SSimulation& simulation, const SWindow& window) {
    for (const SRoundsWithoutTarget& rounds : simulation.withoutTarget) {
        if (rounds.last >= window.first) {
            return std::max(rounds.first, window.first);
        }
    }
    return std::nullopt;
}

std::string countSnapshots(const SSimulation& simulation) {
    std::size_t held = 0;
    std::size_t rotated = 0;
    std::size_t lost = 0;
    for (const SSnapshot& snapshot : simulation.snapshots) {
        ++(snapshot.end == EEnd::kHeld ? held : snapshot.end == EEnd::kRotated ? rotated : lost);
    }
    return fmt::format("{}: {} rotated, {} still held", countInWords(simulation.snapshots.size(), "snapshot"),
                       rotated, held) +
           (lost == 0 ? "" : fmt::format(", {} lost", lost));
}

std::string namesOfRounds(std::size_t first, std::size_t last) {
    return (first == last ? "Round " : "Rounds ") + shownRounds(first, last);
}

std::vector<std::string> remarksOn(const SSimulation& simulation, const SWindow& window) {
    const SPlan& plan = simulation.plan;
    const std::string rounds = simulation.finishedRounds < plan.rounds
                                   ? fmt::format("{} of {} rounds", simulation.finishedRounds, plan.rounds)
                                   : countInWords(plan.rounds, "round");
    std::vector<std::string> remarks{
        fmt::format("{} from {} on, every {}; a bar shows the number of its round", rounds,
                    toShownTime(plan.start), toShownDuration(plan.every))};
    if (!plan.from.empty()) {
        remarks.emplace_back("Bars d1, d2 and so on are the backups of --from, in the order given");
    }
    if (const std::size_t without = countRoundsWithoutTarget(simulation); without != 0) {
        const char* const which = window.first == 1 ? "the first" : "the first that is drawn";
        remarks.push_back(fmt::format("{} of them found no target", without) +
                          (firstWithoutTarget(simulation, window).has_value()
                               ? fmt::format("; the vertical line is at {}", which)
                               : ""));
    }
    remarks.push_back(countSnapshots(simulation));
    if (window.first > 1) {
        const bool isOne = window.first == 2;
        remarks.push_back(fmt::format(
            "{} {} not drawn; {} snapshots are drawn if they were still held in round {}",
            namesOfRounds(1, window.first - 1), isOne ? "is" : "are", isOne ? "its" : "their", window.first));
    }
    if (window.last < simulation.finishedRounds) {
        const bool isOne = window.last + 1 == simulation.finishedRounds;
        remarks.push_back(fmt::format("{}, which found no target either, {} not drawn",
                                      namesOfRounds(window.last + 1, simulation.finishedRounds),
                                      isOne ? "is" : "are"));
    }
    return remarks;
}

// Adds the rows with their states at the end.
void addRows(SPicture& picture, const SSimulation& simulation) {
    for (const SAccountConfiguration& configuration : simulation.configurations) {
        SPictureGroup& group = picture.groups.emplace_back();
        group.name = configuration.first;
        for (const std::string& target : configuration.targets) {
            SPictureRow& row = group.rows.emplace_back();
            row.name = target;
            row.state = ETarget::kFree;
        }
    }
    for (const SUnprotected& target : simulation.unprotected) {
        if (target.overwritten == 0) {
            SPictureRow& row = picture.groups[target.configuration].rows[target.target];
            const bool isHeld = !lastRoundHeld(simulation, target).has_value();
            row.state = isHeld ? ETarget::kHeld : ETarget::kUnprotected;
        }
    }
    for (const SSnapshot& snapshot : simulation.snapshots) {
        if (snapshot.end == EEnd::kHeld) {
            picture.groups[snapshot.configuration].rows[snapshot.target].state = ETarget::kHeld;
        }
    }
    for (const SShortConfiguration& shortage : shortagesOf(simulation)) {
        SPictureGroup& group = picture.groups[shortage.configuration];
        group.isShort = true;
        for (SPictureRow& row : group.rows) {
            row.state = ETarget::kBlocked;
        }
    }
}

}  // namespace

SPicture pictureOf(const SSimulation& simulation) {
    const SPlan& plan = simulation.plan;
    const SWindow window = windowOf(simulation);
    const std::int64_t begin = beginOf(simulation, window);
    const std::int64_t end = timeOf(plan, window.last + 1);
    SPicture picture;
    picture.title = "Which snapshot holds which target";
    picture.warnings = warningsOf(simulation);
    picture.remarks = remarksOn(simulation, window);
    picture.timeLabel = "time, on the clock of the time stamps";
    picture.rowLabel = "targets";
    picture.from = static_cast<double>(begin);
    picture.to = static_cast<double>(end);
    picture.columns = std::max<std::size_t>(static_cast<std::size_t>((end - begin) / plan.every), 1);
    picture.ticks = timeTicks(begin, end, mostTicks(picture.columns));
    addRows(picture, simulation);
    for (const SUnprotected& target : simulation.unprotected) {
        for (const SBar& bar : barsOf(simulation, target, picture)) {
            picture.groups[target.configuration].rows[target.target].bars.push_back(bar);
        }
    }
    for (const SSnapshot& snapshot : simulation.snapshots) {
        if (snapshot.end == EEnd::kHeld || timeOf(plan, snapshot.ended) > begin) {
            picture.groups[snapshot.configuration].rows[snapshot.target].bars.push_back(
                barOf(simulation, snapshot, picture));
        }
    }
    sortAndShorten(picture);
    picture.plainMeaning = picture.has(EBar::kPlain) ? "a snapshot, until it is rotated" : "";
    picture.excludedMeaning = picture.has(EBar::kExcluded) ? "excluded from rotation" : "";
    picture.invalidMeaning = picture.has(EBar::kInvalid) ? invalidMeaningOf(simulation) : "";
    picture.unprotectedMeaning = picture.has(EBar::kUnprotected) ? kUnprotectedMeaning : "";
    picture.openMeaning = picture.hasRow([](const SPictureRow& row) {
        return std::any_of(row.bars.begin(), row.bars.end(), [](const SBar& bar) { return bar.isOpen; });
    })
                              ? "still held at the end"
                              : "";
    if (const auto first = firstWithoutTarget(simulation, window); first.has_value()) {
        picture.lineAt = static_cast<double>(timeOf(plan, *first));
        picture.lineLabel = "no target";
    }
    return picture;
}

}  // namespace fi_rotate
