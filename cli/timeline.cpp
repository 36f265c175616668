#include "cli/timeline.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/columns.h"
#include "cli/printable.h"

namespace fi_rotate {
namespace {

constexpr std::size_t kLetters = 26;
constexpr std::size_t kFewestColumns = 10;
// Rounds without a target are all alike; so many are shown.
constexpr std::size_t kStandstillColumns = 3;
constexpr char kFree = '.';
constexpr char kNoTarget = '!';

// Gives each backup a letter that no other has while it holds its targets or in the round that ends it. Where
// there are more backups than letters, those at least differ that follow one another on a target.
class CLetters {
public:
    char next(std::size_t taken, std::size_t ended, bool isExcluded) {
        const std::size_t place = find(taken);
        busyUntil[place] = ended;
        last = place;
        return static_cast<char>((isExcluded ? 'A' : 'a') + static_cast<char>(place));
    }

private:
    [[nodiscard]] std::size_t find(std::size_t taken) const {
        for (std::size_t step = 1; step <= kLetters; ++step) {
            const std::size_t place = (last + step) % kLetters;
            if (busyUntil[place] < taken) {
                return place;
            }
        }
        for (std::size_t step = 1; step <= kLetters; ++step) {
            const std::size_t place = (last + step) % kLetters;
            if (busyUntil[place] != taken) {
                return place;
            }
        }
        return (last + 1) % kLetters;
    }

    std::vector<std::size_t> busyUntil = std::vector<std::size_t>(kLetters, 0);
    std::size_t last = kLetters - 1;
};

struct SWindow {
    std::size_t first = 1;
    std::size_t last = 0;
};

// The last rounds that fit, but for those at the end that found no target.
SWindow windowOf(const SSimulation& simulation, std::size_t columns) {
    SWindow window;
    window.last = simulation.finishedRounds;
    if (simulation.standstill.has_value()) {
        window.last = std::min(window.last, simulation.standstill->first + kStandstillColumns - 1);
    }
    window.first = window.last > columns ? window.last - columns + 1 : 1;
    return window;
}

// By configuration and target, a character for each round of the window.
std::vector<std::vector<std::string>> cellsOf(const SSimulation& simulation,
                                              const SWindow& window) {
    const std::size_t columns = window.last - window.first + 1;
    std::vector<std::vector<std::string>> cells;
    for (const SAccountConfiguration& configuration : simulation.configurations) {
        cells.emplace_back(configuration.targets.size(), std::string(columns, kFree));
    }
    CLetters letters;
    char letter = kFree;
    for (const SSnapshot& snapshot : simulation.snapshots) {
        const std::size_t ended =
            snapshot.end == EEnd::kHeld ? std::numeric_limits<std::size_t>::max() : snapshot.ended;
        // The first of the snapshots that a backup has, one for each configuration.
        if (snapshot.configuration == 0) {
            letter =
                letters.next(snapshot.taken, ended, isExcluded(simulation.plan, snapshot.taken));
        }
        const std::size_t from = std::max<std::size_t>(snapshot.taken, window.first);
        const std::size_t to = std::min(ended, window.last + 1);
        if (from < to) {
            cells[snapshot.configuration][snapshot.target].replace(from - window.first, to - from,
                                                                   to - from, letter);
        }
    }
    return cells;
}

std::string heading(const SSimulation& simulation, const SWindow& window) {
    std::string text = fmt::format("Rounds {} to {}, a column each\n", window.first, window.last);
    if (window.first > 1) {
        text += fmt::format("  left out for want of room: 1 to {}\n", window.first - 1);
    }
    if (window.last < simulation.finishedRounds) {
        text += fmt::format("  left out, since they found no target either: {} to {}\n",
                            window.last + 1, simulation.finishedRounds);
    }
    return text;
}

// The number of every tenth round, above its column, where it has room.
std::string ruler(const SWindow& window) {
    constexpr std::size_t kEvery = 10;
    const std::size_t columns = window.last + 1 - window.first;
    std::string line;
    for (std::size_t round = window.first; round <= window.last; ++round) {
        const std::size_t column = round - window.first;
        const std::string number = fmt::to_string(round);
        if (column % kEvery == 0 && (column == 0 || column + number.size() <= columns)) {
            line.append(column - line.size(), ' ').append(number);
        }
    }
    return line;
}

std::size_t longestName(const SSimulation& simulation) {
    std::size_t longest = std::string_view("(no target)").size();
    for (const SAccountConfiguration& configuration : simulation.configurations) {
        for (const std::string& target : configuration.targets) {
            longest = std::max(longest, displayWidth(asPrintable(target)));
        }
    }
    return longest;
}

}  // namespace

std::string toTimeline(const SSimulation& simulation, std::size_t width) {
    constexpr std::size_t kIndent = 4;
    constexpr std::size_t kGap = 2;
    const std::size_t label =
        std::min(longestName(simulation), std::max(width / 3, kIndent + kGap) - kIndent);
    const std::size_t taken = kIndent + label + kGap;
    const std::size_t columns = width > taken + kFewestColumns ? width - taken : kFewestColumns;
    const SWindow window = windowOf(simulation, columns);
    if (window.last == 0) {
        return "";
    }

    const auto line = [&](const std::string& name, const std::string& cells) {
        const std::string shown = cutTo(asPrintable(name), label);
        return fmt::format("{:{}}{}{:{}}{}\n", "", kIndent, shown, "",
                           label - displayWidth(shown) + kGap, cells);
    };
    std::string text = heading(simulation, window);
    text += line("", ruler(window));
    const auto cells = cellsOf(simulation, window);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const SAccountConfiguration& configuration = simulation.configurations[i];
        text += "  " + cutTo(asPrintable(configuration.first), width - 2) + "\n";
        for (std::size_t target = 0; target < cells[i].size(); ++target) {
            text += line(configuration.targets[target], cells[i][target]);
        }
    }
    if (simulation.standstill.has_value()) {
        const std::size_t first = std::max(simulation.standstill->first, window.first);
        text += line("(no target)", std::string(first - window.first, ' ') +
                                        std::string(window.last + 1 - first, kNoTarget));
    }
    return text + "  letter: a backup that holds the target; capital: an excluded one; .: free\n";
}

}  // namespace fi_rotate
