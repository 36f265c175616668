#include "cli/simulate/csv.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/base/calendar.h"
#include "cli/base/text.h"

namespace fi_rotate {
namespace {

constexpr std::string_view kFixedColumns = "round,time,excluded,selection,rotated,lost";

std::string field(std::string_view text) {
    std::string quoted = "\"";
    const std::string shown = asUtf8(text);
    for (const char character : shown) {
        quoted.append(character == '"' ? 2 : 1, character);
    }
    return shown.find_first_of("\",\r\n") == std::string::npos ? shown : quoted + "\"";
}

// Goes through the rounds with the snapshots in the order of taking beside those in the order of ending.
class CLines {
public:
    explicit CLines(const SSimulation& all) : simulation(all) {
        for (const SSnapshot& snapshot : all.snapshots) {
            if (snapshot.end != EEnd::kHeld) {
                ended.push_back(snapshot);
            }
        }
        std::stable_sort(ended.begin(), ended.end(), [](const SSnapshot& one, const SSnapshot& other) {
            return one.ended < other.ended;
        });
    }

    [[nodiscard]] std::string heading() const {
        std::string line(kFixedColumns);
        for (const SAccountConfiguration& configuration : simulation.configurations) {
            line += "," + field(configuration.first);
        }
        return line + "\n";
    }

    std::string line(std::size_t round) {
        const auto [rotated, lost] = endedBy(round);
        const bool hasSelection =
            nextTaken < simulation.snapshots.size() && simulation.snapshots[nextTaken].taken == round;
        std::string text =
            fmt::format("{},{},{},{},{},{}", round, toIsoTime(timeOf(simulation.plan, round)),
                        isExcluded(simulation.plan, round) ? "yes" : "no", hasSelection ? "yes" : "no",
                        fmt::join(rotated, " "), fmt::join(lost, " "));
        for (const SAccountConfiguration& configuration : simulation.configurations) {
            text += ",";
            if (hasSelection) {
                text += field(configuration.targets[simulation.snapshots[nextTaken++].target]);
            }
        }
        return text + "\n";
    }

private:
    struct SEndedRounds {
        std::set<std::uint32_t> rotated;
        std::set<std::uint32_t> lost;
    };

    SEndedRounds endedBy(std::size_t round) {
        SEndedRounds rounds;
        for (; nextEnded < ended.size() && ended[nextEnded].ended == round; ++nextEnded) {
            const SSnapshot& snapshot = ended[nextEnded];
            (snapshot.end == EEnd::kRotated ? rounds.rotated : rounds.lost).insert(snapshot.taken);
        }
        return rounds;
    }

    const SSimulation& simulation;
    std::vector<SSnapshot> ended;
    std::size_t nextEnded = 0;
    std::size_t nextTaken = 0;
};

}  // namespace

std::string toCsv(const SSimulation& simulation) {
    CLines lines(simulation);
    std::string text = lines.heading();
    for (std::size_t round = 1; round <= simulation.finishedRounds; ++round) {
        text += lines.line(round);
    }
    return text;
}

bool isOwnTable(std::string_view text) {
    return text.substr(0, kFixedColumns.size()) == kFixedColumns;
}

}  // namespace fi_rotate
