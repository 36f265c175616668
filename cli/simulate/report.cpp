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
        ++(snapshot.taken == 0 ? row.takenOver : row.taken);
        row.lost += snapshot.end == EEnd::kLost ? 1U : 0U;
        row.held += snapshot.end == EEnd::kHeld ? 1U : 0U;
        if (snapshot.end == EEnd::kRotated) {
            ++row.rotated;
            ages[snapshot.configuration].push_back(timeOf(simulation.plan, snapshot.ended) -
                                                   timeOf(simulation, snapshot));
        }
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].ages = agesOf(std::move(ages[i]));
        rows[i].fewestKept = simulation.fewestKept[i];
    }

    for (const SRoundsWithoutTarget& rounds : simulation.withoutTarget) {
        for (const SShortConfiguration& shortage : rounds.shortages) {
            SConfigurationSummary& row = rows[shortage.configuration];
            if (row.roundsShort == 0) {
                row.firstShort = rounds.first;
                row.holders = shortage.targets;
            }
            row.roundsShort += rounds.count();
        }
    }
    return rows;
}

std::string shownRounds(std::size_t first, std::size_t last) {
    return first == last ? fmt::to_string(first) : fmt::format("{} to {}", first, last);
}

std::string shortageInWords(const std::vector<SHeldByRound>& holders) {
    const auto excluded = std::count_if(holders.begin(), holders.end(),
                                        [](const SHeldByRound& held) { return held.isExcluded; });
    if (holders.empty()) {
        return "it has no further targets";
    }
    if (holders.size() == 1) {
        return fmt::format("its only target is held by an {} backup", excluded == 1 ? "excluded" : "invalid");
    }
    const std::string whole = fmt::format("all {} targets are held", holders.size());
    const bool isOfOneKind = excluded == 0 || excluded == static_cast<std::ptrdiff_t>(holders.size());
    return isOfOneKind
               ? fmt::format("{} by {} backups", whole, excluded == 0 ? "invalid" : "excluded")
               : fmt::format("{}, {} by excluded backups, the others by invalid ones", whole, excluded);
}

}  // namespace fi_rotate
