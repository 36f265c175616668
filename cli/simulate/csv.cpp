#include "cli/simulate/csv.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
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

// Writes the lines of the rounds. It goes through the snapshots in the order in which they were taken and, at
// the same time, in the order in which they ended.
class CLines {
public:
    explicit CLines(const SSimulation& all) : simulation(all) {
        for (const SSnapshot& snapshot : all.snapshots) {
            if (snapshot.end != EEnd::kHeld) {
                ended.push_back(snapshot);
            }
        }
        addRotatedDocuments();
        while (nextTaken < all.snapshots.size() && all.snapshots[nextTaken].taken == 0) {
            ++nextTaken;
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
        std::string text = fmt::format("{},{},{},{},{},{}", round, toIsoTime(timeOf(simulation.plan, round)),
                                       isExcluded(simulation.plan, round) ? "yes" : "no",
                                       hasSelection ? "yes" : "no", listOf(rotated), listOf(lost));
        for (const SAccountConfiguration& configuration : simulation.configurations) {
            text += ",";
            if (hasSelection) {
                text += field(configuration.targets[simulation.snapshots[nextTaken++].target]);
            }
        }
        return text + "\n";
    }

private:
    // Round and index in SPlan::from.
    using Backups = std::set<std::pair<std::uint32_t, std::uint32_t>>;
    struct SEndedBackups {
        Backups rotated;
        Backups lost;
    };

    // A document that holds no target has no snapshot. Its backup can be rotated nevertheless, and so gets a
    // row.
    void addRotatedDocuments() {
        for (std::size_t i = 0; i < simulation.takenOver.size(); ++i) {
            const STakenOver& backup = simulation.takenOver[i];
            if (backup.end == EEnd::kRotated) {
                SSnapshot& row = ended.emplace_back();
                row.document = static_cast<std::uint32_t>(i);
                row.ended = backup.ended;
                row.end = backup.end;
            }
        }
    }

    SEndedBackups endedBy(std::size_t round) {
        SEndedBackups backups;
        for (; nextEnded < ended.size() && ended[nextEnded].ended == round; ++nextEnded) {
            const SSnapshot& snapshot = ended[nextEnded];
            (snapshot.end == EEnd::kRotated ? backups.rotated : backups.lost)
                .insert({snapshot.taken, snapshot.document});
        }
        return backups;
    }

    static std::string listOf(const Backups& backups) {
        std::vector<std::string> names;
        for (const auto& [round, document] : backups) {
            names.push_back(round == 0 ? fmt::format("d{}", document + 1) : fmt::to_string(round));
        }
        return fmt::format("{}", fmt::join(names, " "));
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
