#include "cli/simulate/picture.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/base/calendar.h"
#include "cli/picture/layout.h"
#include "cli/picture/time_axis.h"

namespace fi_rotate {
namespace {

// The last round that is drawn.
std::size_t lastRoundOf(const SSimulation& simulation) {
    const auto standstill = standstillOf(simulation);
    if (!standstill.has_value()) {
        return simulation.finishedRounds;
    }
    const std::size_t first = *standstill;
    constexpr std::size_t kAtLeast = 3;
    constexpr std::size_t kTwentieth = 20;
    return std::min(simulation.finishedRounds, first + std::max(kAtLeast, first / kTwentieth));
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

SBar barOf(const SSimulation& simulation, const SSnapshot& snapshot, double end) {
    SBar bar;
    bar.group = snapshot.configuration;
    bar.row = snapshot.target;
    bar.from = static_cast<double>(timeOf(simulation, snapshot));
    bar.isOpen = snapshot.end == EEnd::kHeld;
    bar.to = bar.isOpen ? end : static_cast<double>(timeOf(simulation.plan, snapshot.ended));
    bar.kind = kindOf(simulation, snapshot);
    bar.name =
        snapshot.taken == 0 ? fmt::format("d{}", snapshot.document + 1) : fmt::to_string(snapshot.taken);
    bar.title = titleOf(simulation, snapshot);
    return bar;
}

// When the first snapshot was taken, or the first round is.
std::int64_t beginOf(const SSimulation& simulation) {
    std::int64_t begin = simulation.plan.start;
    for (const SSnapshot& snapshot : simulation.snapshots) {
        begin = std::min(begin, timeOf(simulation, snapshot));
    }
    return begin;
}

std::vector<std::string> remarksOn(const SSimulation& simulation, std::size_t last) {
    const SPlan& plan = simulation.plan;
    const std::string rounds = simulation.finishedRounds < plan.rounds
                                   ? fmt::format("{} of {} rounds", simulation.finishedRounds, plan.rounds)
                                   : fmt::format("{} rounds", plan.rounds);
    std::vector<std::string> remarks{
        fmt::format("{} from {} on, every {}; the number in a bar is its round's", rounds,
                    toShownTime(plan.start), toShownDuration(plan.every))};
    if (!plan.from.empty()) {
        remarks.emplace_back(
            "Bars d1, d2 and so on are backups that were there before, by their places in the list");
    }
    if (const std::size_t without = countWithoutTarget(simulation); without != 0) {
        remarks.push_back(fmt::format("{} of them found no target, the first at the line across", without));
    }
    if (last < simulation.finishedRounds) {
        remarks.push_back(fmt::format("Rounds {} to {}, which found no target either, are left out", last + 1,
                                      simulation.finishedRounds));
    }
    return remarks;
}

}  // namespace

SPicture pictureOf(const SSimulation& simulation) {
    const SPlan& plan = simulation.plan;
    const std::size_t last = lastRoundOf(simulation);
    const std::int64_t begin = beginOf(simulation);
    const std::int64_t end = timeOf(plan, last + 1);
    SPicture picture;
    picture.title = "Which snapshot holds which target";
    picture.remarks = remarksOn(simulation, last);
    picture.timeLabel = "time (UTC)";
    picture.rowLabel = "targets";
    picture.from = static_cast<double>(begin);
    picture.to = static_cast<double>(end);
    picture.columns = std::max<std::size_t>(static_cast<std::size_t>((end - begin) / plan.every), 1);
    picture.ticks = timeTicks(begin, end, mostTicks(picture.columns));
    for (const SAccountConfiguration& configuration : simulation.configurations) {
        SPictureGroup& group = picture.groups.emplace_back();
        group.name = configuration.first;
        for (const std::string& target : configuration.targets) {
            group.rows.push_back({target, false});
        }
    }
    for (const SSnapshot& snapshot : simulation.snapshots) {
        picture.bars.push_back(barOf(simulation, snapshot, picture.to));
    }
    picture.plainMeaning = picture.has(EBar::kPlain) ? "a snapshot, from its taking to its rotation" : "";
    picture.excludedMeaning = picture.has(EBar::kExcluded) ? "excluded from rotation" : "";
    picture.invalidMeaning = picture.has(EBar::kInvalid) ? "lost: a later round was given its target" : "";
    picture.openMeaning = picture.bars.empty() ? "" : "still held in the end";
    if (!simulation.withoutTarget.empty()) {
        picture.lineAt = static_cast<double>(timeOf(plan, simulation.withoutTarget.front().first));
        picture.lineLabel = "no target";
    }
    return picture;
}

}  // namespace fi_rotate
