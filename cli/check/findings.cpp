#include "cli/check/findings.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

// Of one hazard in one input so many findings are shown and the others counted: mostly all have one reason.
constexpr std::size_t kMostOfOneHazard = 20;
constexpr std::size_t kLongestQuotation = 80;
constexpr std::size_t kMostNamed = 5;

bool isBefore(const SFinding& left, const SFinding& right) {
    return std::tie(left.spot.place.line, left.spot.place.column) <
           std::tie(right.spot.place.line, right.spot.place.column);
}

// Bytes kept of a line before the place in it, of the word there, and behind that: more than is ever shown,
// while a line may be a whole document.
constexpr std::size_t kMostOnEachSide = 400;

// Bytes of the word at the start of `line`: a tag, a reference, or text up to what ends a target or an
// element's text.
std::size_t wordLength(std::string_view line) {
    const char first = line.empty() ? '\0' : line.front();
    const bool isMarkup = first == '<' || first == '&';
    const std::size_t end = isMarkup ? line.find(first == '<' ? '>' : ';') : line.find_first_of("<;&");
    const std::size_t length = end == std::string_view::npos ? line.size() : end + (isMarkup ? 1 : 0);
    return std::min(std::max<std::size_t>(length, 1), line.size());
}

}  // namespace

bool CFindings::isFull(EHazard hazard, const std::optional<SCause>& cause) const {
    const auto found = counts.find({hazard, cause});
    return found != counts.end() && found->second >= kMostOfOneHazard;
}

void CFindings::countAnother(EHazard hazard, const std::optional<SCause>& cause) {
    ++counts[{hazard, cause}];
}

void CFindings::add(SFinding finding) {
    const EHazard hazard = finding.hazard;
    const std::optional<SCause> cause = finding.cause;
    if (!isFull(hazard, cause)) {
        kept.push_back(std::move(finding));
    }
    countAnother(hazard, cause);
}

bool CFindings::has(EHazard hazard) const {
    return std::any_of(kept.begin(), kept.end(),
                       [hazard](const SFinding& finding) { return finding.hazard == hazard; });
}

void CFindings::setMissingCauses(EHazard hazard, EHazard cause) {
    changeCauses([blamed = SCause{name, cause}, hazard](const SFinding& finding) {
        return finding.hazard == hazard && !finding.cause.has_value() ? blamed : finding.cause;
    });
}

void CFindings::changeCauses(const std::function<std::optional<SCause>(const SFinding&)>& causeOf) {
    const Counts others = notKept();
    Counts changed;
    std::map<Counts::key_type, std::optional<SCause>> last;
    for (SFinding& finding : kept) {
        std::optional<SCause>& cause = last[{finding.hazard, finding.cause}];
        cause = causeOf(finding);
        ++changed[{finding.hazard, cause}];
        finding.cause = cause;
    }
    for (const auto& [kind, count] : others) {
        changed[{kind.first, last.at(kind)}] += count;
    }
    counts = std::move(changed);
}

CFindings::Counts CFindings::notKept() const {
    Counts others = counts;
    for (const SFinding& finding : kept) {
        --others.at({finding.hazard, finding.cause});
    }
    return others;
}

void CFindings::addOnWhole(EHazard hazard, std::string text, std::optional<SCause> cause) {
    SFinding finding;
    finding.hazard = hazard;
    finding.text = std::move(text);
    finding.cause = std::move(cause);
    add(std::move(finding));
}

std::vector<SFinding> CFindings::inOrder() const {
    std::vector<SFinding> rows = kept;
    for (const auto& [kind, count] : notKept()) {
        if (count > 0) {
            const auto last =
                std::find_if(kept.rbegin(), kept.rend(), [&wanted = kind](const SFinding& finding) {
                    return std::pair(finding.hazard, finding.cause) == wanted;
                });
            SFinding others = *last;
            others.spot.excerpt.clear();
            others.spot.caret = 0;
            others.count = count;
            others.text = fmt::format("and {} more of these", others.count);
            rows.push_back(std::move(others));
        }
    }
    std::stable_sort(rows.begin(), rows.end(), isBefore);
    return rows;
}

std::string inQuotes(std::string_view text) {
    return quoted(text, kLongestQuotation);
}

std::string enumerate(const std::vector<std::string>& names) {
    const bool isLong = names.size() > kMostNamed;
    const auto shown = static_cast<std::ptrdiff_t>((isLong ? kMostNamed : names.size()) - 1);
    const std::string last = isLong ? fmt::format("{} more", names.size() - kMostNamed + 1) : names.back();
    return shown == 0 ? last
                      : fmt::format("{} and {}", fmt::join(names.begin(), names.begin() + shown, ", "), last);
}

CLines::CLines(std::string_view borrowed) : text(borrowed), starts{0} {
    constexpr const char* kLineEnds = "\r\n";
    for (std::size_t end = text.find_first_of(kLineEnds); end != std::string_view::npos;
         end = text.find_first_of(kLineEnds, end)) {
        end += text.substr(end, 2) == "\r\n" ? 2 : 1;
        starts.push_back(end);
    }
}

SSpot CLines::at(std::size_t offset) const {
    const auto next = std::upper_bound(starts.begin(), starts.end(), offset);
    const std::size_t lineBegin = *std::prev(next);
    const std::size_t lineEnd = std::min(text.find_first_of("\r\n", offset), text.size());
    const std::string_view word = text.substr(offset, wordLength(text.substr(offset, lineEnd - offset)));
    const std::size_t begin =
        offset - lineBegin <= kMostOnEachSide ? lineBegin : characterStart(text, offset - kMostOnEachSide);
    const std::size_t farthest = offset + std::min(word.size(), kMostOnEachSide) + kMostOnEachSide;
    const std::size_t end = farthest >= lineEnd ? lineEnd : characterStart(text, farthest);

    SSpot spot;
    spot.place = {static_cast<std::size_t>(std::distance(starts.begin(), next)),
                  1 + characterCount(text.substr(lineBegin, offset - lineBegin))};
    spot.excerpt = text.substr(begin, end - begin);
    spot.caret = offset - begin;
    spot.wordLength = std::min(word.size(), end - offset);
    spot.isCutBefore = begin > lineBegin;
    spot.isCutAfter = end < lineEnd;
    return spot;
}

std::size_t CLines::offsetOf(SPlace place) const {
    // Of a character that takes four bytes UTF-16 makes two units.
    constexpr std::size_t kLongCharacter = 4;
    if (place.line == 0 || place.line > starts.size()) {
        return text.size();
    }
    const std::size_t begin = starts[place.line - 1];
    const std::size_t end = place.line < starts.size() ? starts[place.line] : text.size();
    std::size_t offset = begin;
    for (std::size_t column = 1; column < place.column && offset < end; ++column) {
        const std::size_t length = firstCharacterLength(text.substr(offset, end - offset));
        column += length == kLongCharacter ? 1 : 0;
        offset += length;
    }
    return offset;
}

}  // namespace fi_rotate
