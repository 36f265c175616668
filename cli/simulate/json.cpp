#include "cli/simulate/json.h"

#include <fi_rotation/fi_process_backups.h>

#include "cli/base/calendar.h"
#include "cli/base/json.h"

namespace fi_rotate {
namespace {

Json agesOf(const std::optional<SAges>& ages) {
    if (!ages.has_value()) {
        return nullptr;
    }
    return {{"minimum", ages->minimum}, {"median", ages->median}, {"maximum", ages->maximum}};
}

Json keptOf(const std::optional<SKept>& kept) {
    return kept.has_value() ? Json{{"count", kept->count}, {"round", kept->round}} : Json(nullptr);
}

Json shortageOf(const SConfigurationSummary& summary, const SAccountConfiguration& configuration,
                const std::vector<SBackup>& from) {
    if (summary.roundsShort == 0) {
        return nullptr;
    }
    Json targets = Json::array();
    for (const SHeldByRound& held : summary.holders) {
        targets.push_back(
            {{"target", asUtf8(configuration.targets[held.target])},
             {"holder_round", held.round != 0 ? Json(held.round) : Json(nullptr)},
             {"holder_document", held.round != 0 ? Json(nullptr) : Json(asUtf8(from[held.document].file))},
             {"excluded", held.isExcluded}});
    }
    return {{"rounds", summary.roundsShort},
            {"first_round", summary.firstShort},
            {"words", shortageInWords(summary.holders)},
            {"targets", targets}};
}

Json leastOf(const SFewestTargets& least) {
    switch (least.search) {
        case ESearch::kFound:
            return {{"search", "found"}, {"targets", least.targets}};
        case ESearch::kNever:
            return {{"search", "never"}, {"targets", nullptr}};
        case ESearch::kNoLimit:
            return {{"search", "no_limit"}, {"targets", nullptr}};
        case ESearch::kStopped:
            return {{"search", "stopped"}, {"targets", nullptr}};
    }
    return nullptr;
}

Json configurationsOf(const SSimulationReport& report) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < report.summaries.size(); ++i) {
        const SConfigurationSummary& summary = report.summaries[i];
        rows.push_back({
            {"first", asUtf8(summary.first)},
            {"targets", listOf(report.simulation.configurations[i].targets)},
            {"taken_over", summary.takenOver},
            {"taken", summary.taken},
            {"rotated", summary.rotated},
            {"held", summary.held},
            {"lost", summary.lost},
            {"seconds_until_rotated", agesOf(summary.ages)},
            {"fewest_restore_points", keptOf(summary.fewestKept.sinceFirstBackup)},
            {"fewest_restore_points_since_rotation", keptOf(summary.fewestKept.sinceRotation)},
            {"shortage",
             shortageOf(summary, report.simulation.configurations[i], report.simulation.plan.from)},
            {"least_targets", report.goal.has_value() ? leastOf(report.fewestTargets[i]) : Json(nullptr)},
        });
    }
    return rows;
}

const char* stateOf(const STakenOver& backup) {
    if (!backup.whyInvalid.empty()) {
        return "invalid";
    }
    switch (backup.end) {
        case EEnd::kRotated:
            return "rotated";
        case EEnd::kLost:
            return "lost";
        default:
            return "held";
    }
}

Json takenOverOf(const SSimulation& simulation) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < simulation.takenOver.size(); ++i) {
        const SBackup& given = simulation.plan.from[i];
        const STakenOver& backup = simulation.takenOver[i];
        const bool isInvalid = !backup.whyInvalid.empty();
        const bool isEnded = backup.ended != 0 && !isInvalid;
        rows.push_back({
            {"file", asUtf8(given.file)},
            {"time", backup.time.has_value() ? Json(toIsoTime(*backup.time)) : Json(nullptr)},
            {"excluded", (given.flagWord & FI_EXCLUDE_ROTATION) != 0},
            {"snapshots", backup.snapshots},
            {"state", stateOf(backup)},
            {"ended_in_round", isEnded ? Json(backup.ended) : Json(nullptr)},
            {"ended_at", isEnded ? Json(toIsoTime(timeOf(simulation.plan, backup.ended))) : Json(nullptr)},
            {"reason", isInvalid ? Json(asUtf8(backup.whyInvalid)) : Json(nullptr)},
        });
    }
    return rows;
}

}  // namespace

std::string toJson(const SSimulationReport& report) {
    const SSimulation& simulation = report.simulation;
    const SPlan& plan = simulation.plan;
    const auto& without = simulation.withoutTarget;
    const Json document = {
        {"rounds", plan.rounds},
        {"finished_rounds", simulation.finishedRounds},
        {"start", toIsoTime(plan.start)},
        {"every_seconds", plan.every},
        {"exclude_every", orNull(plan.excludedEvery)},
        {"exclude_weekday", plan.excludedWeekday.has_value()
                                ? Json(kWeekdays.at(static_cast<std::size_t>(*plan.excludedWeekday)))
                                : Json(nullptr)},
        {"exclude_seconds", orNull(plan.excludedFor)},
        {"keep_seconds", orNull(report.goal)},
        {"from", takenOverOf(simulation)},
        {"first_round_without_target", without.empty() ? Json(nullptr) : Json(without.front().first)},
        {"rounds_without_target", countRoundsWithoutTarget(simulation)},
        {"configurations", configurationsOf(report)},
    };
    return document.dump(2) + "\n";
}

}  // namespace fi_rotate
