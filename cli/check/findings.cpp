#include "cli/check/findings.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "cli/printable.h"

namespace fi_rotate {
namespace {

// A report is for reading. What is wrong a thousand times is wrong in one way.
constexpr std::size_t kMostOfOneHazard = 20;
constexpr std::size_t kLongestQuotation = 80;

bool isBefore(const SFinding& left, const SFinding& right) {
    return std::tie(left.spot.place.line, left.spot.place.column) <
           std::tie(right.spot.place.line, right.spot.place.column);
}

}  // namespace

bool CFindings::isFull(EHazard hazard) const {
    return counts.at(static_cast<std::size_t>(hazard)) >= kMostOfOneHazard;
}

void CFindings::countAnother(EHazard hazard) {
    ++counts.at(static_cast<std::size_t>(hazard));
}

void CFindings::add(SFinding finding) {
    const EHazard hazard = finding.hazard;
    if (!isFull(hazard)) {
        kept.push_back(std::move(finding));
    }
    countAnother(hazard);
}

void CFindings::addOfWhole(EHazard hazard, std::string text) {
    SFinding finding;
    finding.hazard = hazard;
    finding.text = std::move(text);
    add(std::move(finding));
}

std::vector<SFinding> CFindings::inOrder() const {
    std::vector<SFinding> rows = kept;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] > kMostOfOneHazard) {
            const auto hazard = static_cast<EHazard>(i);
            const auto last = std::find_if(kept.rbegin(), kept.rend(), [hazard](const SFinding& finding) {
                return finding.hazard == hazard;
            });
            SFinding others = *last;
            others.spot.excerpt.clear();
            others.spot.caret = 0;
            others.count = counts[i] - kMostOfOneHazard;
            others.text = fmt::format("and {} more of these", others.count);
            rows.push_back(std::move(others));
        }
    }
    std::stable_sort(rows.begin(), rows.end(), isBefore);
    return rows;
}

std::string inQuotes(std::string_view text) {
    if (text.size() <= kLongestQuotation) {
        return fmt::format("\"{}\"", text);
    }
    return fmt::format("\"{}...\"", text.substr(0, characterStart(text, kLongestQuotation)));
}

}  // namespace fi_rotate
