#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/check/findings.h"

namespace fi_rotate {

struct SCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;

    void add(const SFinding& finding);
};

// Which findings of a call are told in a line under their cause in place of lines of their own.
class CFolding {
public:
    explicit CFolding(const std::vector<CFindings>& inputs);

    [[nodiscard]] bool isFolded(const SFinding& finding) const;

    // The line on what repeats `cause` and the one on what follows from it, as far as there are such
    // findings.
    [[nodiscard]] std::vector<std::string> linesUnder(const SCause& cause) const;

    // How many hazards have no line of their own.
    [[nodiscard]] std::size_t count() const { return folded; }

private:
    struct SFold {
        SCounts counts;
        std::set<EHazard> hazards;
        // In order.
        std::vector<std::string> inputs;
    };

    [[nodiscard]] static std::string textOf(const SFold& fold, const SCause& cause, bool isSame);

    // What has a line of its own.
    std::set<SCause> shown;
    // By cause and whether they are more of the same.
    std::map<std::pair<SCause, bool>, SFold> folds;
    std::size_t folded = 0;
};

// "no errors", "1 error", "2 errors".
std::string countOf(std::size_t count, const char* thing);

}  // namespace fi_rotate
