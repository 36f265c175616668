#include "cli/simulate/target_search.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "cli/base/calendar.h"

namespace fi_rotate {
namespace {

std::string withTargets(const SAccountConfiguration& configuration, std::size_t count) {
    std::vector<std::string> targets = configuration.targets;
    for (std::size_t number = 1; targets.size() < count; ++number) {
        const std::string invented = fmt::format("SPARE##{}", number);
        if (std::find(targets.begin(), targets.end(), invented) == targets.end()) {
            targets.push_back(invented);
        }
    }
    targets.resize(count);
    return toSpecification({{configuration.first, std::move(targets)}});
}

// The exclusions repeat after so many rounds. Nothing when no round is ever excluded.
std::optional<std::size_t> periodOfExclusions(const SPlan& plan) {
    if (plan.excludedEvery.has_value()) {
        return plan.excludedEvery;
    }
    constexpr std::int64_t kWeek = 7 * kSecondsPerDay;
    const auto period = static_cast<std::size_t>(kWeek / std::gcd(kWeek, plan.every));
    for (std::size_t round = 1; round <= period; ++round) {
        if (isExcluded(plan, round)) {
            return period;
        }
    }
    return std::nullopt;
}

bool namesATargetTwice(const SAccountConfiguration& configuration) {
    const std::set<std::string> names(configuration.targets.begin(), configuration.targets.end());
    return names.size() < configuration.targets.size();
}

class CSearch {
public:
    CSearch(SPlan rounds, const SAccountConfiguration& one, std::int64_t goalInSeconds,
            const ContinueSearchCallback& observer)
        : plan(std::move(rounds)), configuration(one), goal(goalInSeconds), mayContinue(observer) {}

    SFewestTargets run() {
        std::size_t tooFew = 0;
        std::size_t enough = 1;
        // With a target for each round no backup needs to be rotated.
        while (enough < plan.rounds && !simulateAndCheckGoal(enough)) {
            tooFew = enough;
            enough = std::min(2 * enough, plan.rounds);
        }
        while (tooFew + 1 < enough) {
            const std::size_t middle = tooFew + (enough - tooFew) / 2;
            (simulateAndCheckGoal(middle) ? enough : tooFew) = middle;
        }
        return {isStopped ? ESearch::kStopped : ESearch::kFound, enough};
    }

private:
    // Runs the rounds with so many targets. Returns whether the goal was met; false also when the search was
    // stopped.
    bool simulateAndCheckGoal(std::size_t targets) {
        if (isStopped) {
            return false;
        }
        plan.configuration = withTargets(configuration, targets);
        const SSimulation simulation = simulate(plan, [&](const SSimulation& soFar) {
            isStopped = isStopped || !mayContinue(targets, soFar.finishedRounds);
            return !isStopped && !isMissed(soFar);
        });
        return !isStopped && !isMissed(simulation);
    }

    [[nodiscard]] bool isMissed(const SSimulation& simulation) const {
        const bool isTooYoung = simulation.shortestHeld.value_or(goal) < goal;
        return !simulation.withoutTarget.empty() || simulation.hasLost || isTooYoung;
    }

    SPlan plan;
    const SAccountConfiguration& configuration;
    std::int64_t goal;
    const ContinueSearchCallback& mayContinue;
    bool isStopped = false;
};

}  // namespace

SFewestTargets findFewestTargets(const SPlan& plan, const SAccountConfiguration& configuration,
                                 std::int64_t goal, const ContinueSearchCallback& mayContinue) {
    if (namesATargetTwice(configuration)) {
        return {ESearch::kNever, 0};
    }
    if (!roundsUntilSettled(plan, goal).has_value()) {
        return {ESearch::kNoLimit, 0};
    }
    return CSearch(plan, configuration, goal, mayContinue).run();
}

std::optional<std::size_t> roundsUntilSettled(const SPlan& plan, std::int64_t goal) {
    const auto period = periodOfExclusions(plan);
    if (period.has_value() && !plan.excludedFor.has_value()) {
        return std::nullopt;
    }
    const std::int64_t longest = period.has_value() ? std::max(goal, *plan.excludedFor) : goal;
    const std::int64_t roundsKept = (longest - 1) / plan.every + 1;
    return static_cast<std::size_t>(roundsKept) + period.value_or(0) + 1;
}

}  // namespace fi_rotate
