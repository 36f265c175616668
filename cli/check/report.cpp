#include "cli/check/report.h"

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/base/json.h"
#include "cli/base/text.h"
#include "cli/check/excerpt.h"

namespace fi_rotate {
namespace {

// Of lines that belong to the one before them.
constexpr std::size_t kIndent = 4;

// Red for what is wrong and yellow for what need not be, as states of backups have them.
std::string severityWord(ESeverity severity, bool colour) {
    const std::string word(nameOf(severity));
    const auto style =
        fmt::fg(severity == ESeverity::kError ? fmt::terminal_color::red : fmt::terminal_color::yellow);
    return colour ? fmt::format(style, "{}", word) : word;
}

std::string lineOf(const std::string& input, const SFinding& finding, std::size_t width, bool colour) {
    const SHazardKind& kind = kindOf(finding.hazard);
    const SPlace place = finding.spot.place;
    std::string text = fmt::format("{}:{}:{}: {}: {} [{}]\n", asPrintable(input), place.line, place.column,
                                   severityWord(kind.severity, colour), asPrintable(finding.text), kind.name);
    if (!finding.spot.excerpt.empty()) {
        const SShownExcerpt shown = showExcerpt(finding.spot, width - std::min(width, kIndent));
        text += fmt::format("{0:{1}}{2}\n{0:{3}}^\n", "", kIndent, shown.line, kIndent + shown.caret);
    }
    return text;
}

// Each cause is followed by what it causes: behind the last finding of its hazard.
std::string linesOf(const CFindings& findings, const CFolding& folding, std::size_t width, bool colour) {
    std::vector<SFinding> rows = findings.inOrder();
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&folding](const SFinding& finding) { return folding.isFolded(finding); }),
               rows.end());
    std::string text;
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        text += lineOf(findings.input(), *row, width, colour);
        const bool isLast = std::none_of(
            row + 1, rows.end(), [row](const SFinding& later) { return later.hazard == row->hazard; });
        if (isLast) {
            for (const std::string& line : folding.linesUnder({findings.input(), row->hazard})) {
                text += fmt::format("{:{}}{}\n", "", kIndent, asPrintable(line));
            }
        }
    }
    return text;
}

std::string foldedWords(std::size_t count) {
    return count == 0 ? ""
                      : fmt::format(" {} of these {} from others or {} them;", count,
                                    count == 1 ? "follows" : "follow", count == 1 ? "repeats" : "repeat");
}

Json jsonOf(const SCause& cause) {
    return {{"file", asUtf8(cause.input)}, {"name", kindOf(cause.hazard).name}};
}

Json jsonOf(const std::string& input, const SFinding& finding) {
    const SHazardKind& kind = kindOf(finding.hazard);
    return {
        {"file", asUtf8(input)},
        {"line", finding.spot.place.line},
        {"column", finding.spot.place.column},
        {"severity", nameOf(kind.severity)},
        {"name", kind.name},
        {"text", asUtf8(finding.text)},
        {"caused_by", finding.cause.has_value() ? jsonOf(*finding.cause) : Json(nullptr)},
        {"count", finding.count},
    };
}

}  // namespace

SCounts countAll(const std::vector<CFindings>& inputs) {
    SCounts counts;
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            counts.add(finding);
        }
    }
    return counts;
}

std::string toText(const std::vector<CFindings>& inputs, std::size_t width, bool colour) {
    const CFolding folding(inputs);
    std::string text;
    for (const CFindings& findings : inputs) {
        text += linesOf(findings, folding, width, colour);
    }
    const SCounts counts = countAll(inputs);
    return text + fmt::format("{}, {};{} checked the configuration and {}\n",
                              countInWords(counts.errors, "error"), countInWords(counts.warnings, "warning"),
                              foldedWords(folding.foldedCount()),
                              countInWords(inputs.size() - 1, "document"));
}

std::string toJson(const std::vector<CFindings>& inputs) {
    Json rows = Json::array();
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            rows.push_back(jsonOf(findings.input(), finding));
        }
    }
    const SCounts counts = countAll(inputs);
    const Json document = {
        {"findings", rows},
        {"errors", counts.errors},
        {"warnings", counts.warnings},
        {"documents", inputs.size() - 1},
    };
    return document.dump(2) + "\n";
}

}  // namespace fi_rotate
