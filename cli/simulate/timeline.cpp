#include "cli/simulate/timeline.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/base/columns.h"
#include "cli/base/text.h"
#include "cli/picture/picture.h"
#include "cli/simulate/report.h"

namespace fi_rotate {
namespace {

constexpr std::size_t kLetters = 26;
constexpr std::size_t kFewestColumns = 10;
// If the simulation ends with rounds without a target, so many of them are shown.
constexpr std::size_t kStandstillColumns = 3;
constexpr char kFree = '.';
constexpr char kNoTarget = '!';
// Of a target that only an invalid backup names: the library may choose it, or cannot because it is held.
constexpr char kUnprotected = '-';
constexpr char kHeldByInvalid = '#';

// Letters as numbers from 0 on, one for each backup.
class CLetters {
public:
    // A letter that the backups before it on its targets did not have and, while there are enough letters,
    // that no other backup has at the same time.
    std::size_t next(std::size_t taken, std::size_t ended, const std::set<std::size_t>& before) {
        last = find(taken, before);
        busyUntil[last] = std::max(busyUntil[last], ended);
        return last;
    }

private:
    [[nodiscard]] std::size_t find(std::size_t taken, const std::set<std::size_t>& before) const {
        std::optional<std::size_t> shared;
        for (std::size_t step = 1; step <= kLetters; ++step) {
            const std::size_t letter = (last + step) % kLetters;
            if (before.count(letter) != 0) {
                continue;
            }
            if (busyUntil[letter] < taken) {
                return letter;
            }
            shared = shared.value_or(letter);
        }
        return shared.value_or(last);
    }

    std::vector<std::size_t> busyUntil = std::vector<std::size_t>(kLetters, 0);
    std::size_t last = kLetters - 1;
};

std::size_t endOf(const SSnapshot& snapshot) {
    return snapshot.end == EEnd::kHeld ? std::numeric_limits<std::size_t>::max() : snapshot.ended;
}

}  // namespace

std::vector<char> lettersOf(const SSimulation& simulation) {
    const std::vector<SSnapshot>& all = simulation.snapshots;
    // By configuration and target.
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> lastOn;
    CLetters letters;
    std::vector<char> result;
    while (result.size() < all.size()) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(result.size());
        const auto end = std::find_if_not(begin, all.end(), [&begin](const SSnapshot& snapshot) {
            return areOfOneBackup(*begin, snapshot);
        });
        std::set<std::size_t> before;
        std::size_t ended = 0;
        for (auto snapshot = begin; snapshot != end; ++snapshot) {
            const auto last = lastOn.find({snapshot->configuration, snapshot->target});
            if (last != lastOn.end()) {
                before.insert(last->second);
            }
            ended = std::max(ended, endOf(*snapshot));
        }
        const std::size_t letter = letters.next(begin->taken, ended, before);
        for (auto snapshot = begin; snapshot != end; ++snapshot) {
            lastOn[{snapshot->configuration, snapshot->target}] = letter;
            result.push_back(static_cast<char>('a' + static_cast<char>(letter)));
        }
    }
    return result;
}

namespace {

char upperCase(char letter) {
    return static_cast<char>(letter - 'a' + 'A');
}

struct SWindow {
    std::size_t first = 1;
    std::size_t last = 0;
};

// The last rounds that fit. Of the rounds without a target at the end only the first few are shown.
SWindow windowOf(const SSimulation& simulation, std::size_t columns) {
    SWindow window;
    window.last = simulation.finishedRounds;
    if (const auto standstill = firstRoundOfStandstill(simulation)) {
        window.last = std::min(window.last, *standstill + kStandstillColumns - 1);
    }
    window.first = window.last > columns ? window.last - columns + 1 : 1;
    return window;
}

using Cells = std::vector<std::vector<std::string>>;

void markUnprotected(Cells& cells, const SSimulation& simulation, const SWindow& window) {
    for (const SUnprotected& target : simulation.unprotected) {
        std::string& row = cells[target.configuration][target.target];
        const std::size_t held = lastRoundHeld(simulation, target).value_or(window.last);
        const std::size_t end = target.overwritten != 0 ? target.overwritten : window.last + 1;
        for (std::size_t round = window.first; round < std::min(end, window.last + 1); ++round) {
            row[round - window.first] = round <= held ? kHeldByInvalid : kUnprotected;
        }
    }
}

bool areIn(const Cells& cells, char mark) {
    return std::any_of(cells.begin(), cells.end(), [mark](const std::vector<std::string>& rows) {
        return std::any_of(rows.begin(), rows.end(),
                           [mark](const std::string& row) { return row.find(mark) != std::string::npos; });
    });
}

std::string legendOf(const Cells& cells) {
    std::string text =
        "  a letter: the backup that holds the target; a capital letter: an excluded one; .: free\n";
    if (areIn(cells, kUnprotected)) {
        text += fmt::format("  {}: {}\n", kUnprotected, kUnprotectedMeaning);
    }
    if (areIn(cells, kHeldByInvalid)) {
        text += fmt::format("  {}: held by an invalid backup: not free in the call of this round\n",
                            kHeldByInvalid);
    }
    return text;
}

// By configuration and target, a character for each round of the window.
Cells cellsOf(const SSimulation& simulation, const SWindow& window) {
    const std::size_t columns = window.last - window.first + 1;
    Cells cells;
    cells.reserve(simulation.configurations.size());
    for (const SAccountConfiguration& configuration : simulation.configurations) {
        cells.emplace_back(configuration.targets.size(), std::string(columns, kFree));
    }
    markUnprotected(cells, simulation, window);
    const std::vector<char> letters = lettersOf(simulation);
    for (std::size_t i = 0; i < simulation.snapshots.size(); ++i) {
        const SSnapshot& snapshot = simulation.snapshots[i];
        const std::size_t from = std::max<std::size_t>(snapshot.taken, window.first);
        const std::size_t to = std::min(endOf(snapshot), window.last + 1);
        std::string& row = cells[snapshot.configuration][snapshot.target];
        for (std::size_t round = from; round < to; ++round) {
            const bool isCapital = isExcludedAt(simulation, snapshot, timeOf(simulation.plan, round));
            const char letter = letters[i];
            row[round - window.first] = isCapital ? upperCase(letter) : letter;
        }
    }
    return cells;
}

// A mark for each round of the window that found no target, and blanks before them.
std::string marksOf(const SSimulation& simulation, const SWindow& window) {
    std::string marks;
    for (const SRoundsWithoutTarget& rounds : simulation.withoutTarget) {
        const std::size_t from = std::max(rounds.first, window.first);
        const std::size_t to = std::min(rounds.last, window.last) + 1;
        if (from < to) {
            marks.resize(from - window.first, ' ');
            marks.append(to - from, kNoTarget);
        }
    }
    return marks;
}

std::string heading(const SSimulation& simulation, const SWindow& window) {
    std::string text = window.first == window.last
                           ? fmt::format("Round {}\n", window.first)
                           : fmt::format("Rounds {} to {}, a column each\n", window.first, window.last);
    if (window.first > 1) {
        text += fmt::format("  not shown (terminal too narrow): {}\n", shownRounds(1, window.first - 1));
    }
    if (window.last < simulation.finishedRounds) {
        text += fmt::format("  not shown (no target was found either): {}\n",
                            shownRounds(window.last + 1, simulation.finishedRounds));
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
        return fmt::format("{:{}}{}{:{}}{}\n", "", kIndent, shown, "", label - displayWidth(shown) + kGap,
                           cells);
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
    const std::string marks = marksOf(simulation, window);
    if (marks.find(kNoTarget) != std::string::npos) {
        text += line("(no target)", marks);
    }
    return text + legendOf(cells);
}

}  // namespace fi_rotate
