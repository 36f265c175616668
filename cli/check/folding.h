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

// Where an earlier input has a finding of the same hazard with the same text, that one becomes the cause, so
// that only the first is shown. What stands in double quotes is not compared, except in a pair that matches
// nothing and in a target that several backups hold. What follows from such a repetition gets the cause of
// the first. `inputs` are those of a call, in order.
void setCausesOfRepetitions(std::vector<CFindings>& inputs);

// Which findings of a call have no line of their own, but are counted in a line under their cause.
class CFolding {
public:
    explicit CFolding(const std::vector<CFindings>& inputs);

    [[nodiscard]] bool isFolded(const SFinding& finding) const;

    // The line that counts the findings that repeat `cause`, and the line that counts those that follow from
    // it. Each is missing when there are no such findings.
    [[nodiscard]] std::vector<std::string> linesUnder(const SCause& cause) const;

    // How many findings have no line of their own.
    [[nodiscard]] std::size_t foldedCount() const { return folded; }

private:
    struct SFold {
        SCounts counts;
        std::set<EHazard> hazards;
        // In order.
        std::vector<std::string> inputs;
    };

    [[nodiscard]] static std::string textOf(const SFold& fold, const SCause& cause, bool isSame);

    // The findings that have a line of their own.
    std::set<SCause> shown;
    // By cause, and by whether the findings repeat its hazard (true) or follow from it (false).
    std::map<std::pair<SCause, bool>, SFold> folds;
    std::size_t folded = 0;
};

// "no errors", "1 error", "2 errors".
std::string countInWords(std::size_t count, const char* thing);

}  // namespace fi_rotate
