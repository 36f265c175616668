#include "cli/simulate/report.h"

#include <algorithm>

#include <fmt/format.h>

namespace fi_rotate {
namespace {

std::optional<SAges> agesOf(std::vector<std::int64_t> ages) {
    if (ages.empty()) {
        return std::nullopt;
    }
    std::sort(ages.begin(), ages.end());
    const std::int64_t below = ages[(ages.size() - 1) / 2];
    const std::int64_t above = ages[ages.size() / 2];
    return SAges{ages.front(), below + (above - below) / 2, ages.back()};
}

// Shortages come in the order of the configurations, of which several may have one first target.
SConfigurationSummary& rowOf(std::vector<SConfigurationSummary>& rows, const SShortage& shortage) {
    return *std::find_if(rows.begin(), rows.end(), [&shortage](const SConfigurationSummary& row) {
        return row.roundsShort == 0 && row.first == shortage.configuration &&
               row.targets == shortage.targets.size();
    });
}

}  // namespace

std::vector<SConfigurationSummary> summarise(const SSimulation& simulation) {
    std::vector<SConfigurationSummary> rows;
    for (const SAccountConfiguration& configuration : simulation.configurations) {
        SConfigurationSummary& row = rows.emplace_back();
        row.first = configuration.first;
        row.targets = configuration.targets.size();
    }

    std::vector<std::vector<std::int64_t>> ages(rows.size());
    for (const SSnapshot& snapshot : simulation.snapshots) {
        SConfigurationSummary& row = rows[snapshot.configuration];
        ++row.taken;
        row.lost += snapshot.end == EEnd::kLost ? 1U : 0U;
        row.held += snapshot.end == EEnd::kHeld ? 1U : 0U;
        if (snapshot.end == EEnd::kRotated) {
            ++row.rotated;
            ages[snapshot.configuration].push_back((snapshot.ended - snapshot.taken) * simulation.plan.every);
        }
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].ages = agesOf(std::move(ages[i]));
    }

    if (simulation.standstill.has_value()) {
        for (const SShortage& shortage : simulation.standstill->shortages) {
            SConfigurationSummary& row = rowOf(rows, shortage);
            row.roundsShort = simulation.finishedRounds + 1 - simulation.standstill->first;
            row.shortage = shortage;
        }
    }
    return rows;
}

std::string shortageInWords(const SShortage& shortage) {
    const auto& targets = shortage.targets;
    const auto excluded = std::count_if(targets.begin(), targets.end(),
                                        [](const SHeldTarget& held) { return held.isExcluded; });
    if (targets.empty()) {
        return "it has no further targets";
    }
    const std::string whole =
        targets.size() == 1 ? "its only target is" : fmt::format("all {} targets are", targets.size());
    if (excluded == static_cast<std::ptrdiff_t>(targets.size())) {
        return whole + " held by excluded backups";
    }
    return fmt::format("{} held, {} by excluded backups, the others by invalid ones", whole, excluded);
}

}  // namespace fi_rotate
