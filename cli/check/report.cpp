#include "cli/check/report.h"

#include <algorithm>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/base/json.h"
#include "cli/base/text.h"
#include "cli/check/excerpt.h"

namespace fi_rotate {
namespace {

// Of lines that belong to the one before them.
constexpr std::size_t kIndent = 4;

std::string countOf(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count == 0 ? "no" : std::to_string(count), thing, count == 1 ? "" : "s");
}

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

Json jsonOf(const std::string& input, const SFinding& finding) {
    const SHazardKind& kind = kindOf(finding.hazard);
    return {
        {"file", asUtf8(input)},
        {"line", finding.spot.place.line},
        {"column", finding.spot.place.column},
        {"severity", nameOf(kind.severity)},
        {"name", kind.name},
        {"text", asUtf8(finding.text)},
        {"count", finding.count},
    };
}

}  // namespace

SCounts countAll(const std::vector<CFindings>& inputs) {
    SCounts counts;
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            const bool isError = kindOf(finding.hazard).severity == ESeverity::kError;
            (isError ? counts.errors : counts.warnings) += finding.count;
        }
    }
    return counts;
}

std::string toText(const std::vector<CFindings>& inputs, std::size_t width, bool colour) {
    std::string text;
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            text += lineOf(findings.input(), finding, width, colour);
        }
    }
    const SCounts counts = countAll(inputs);
    return text + fmt::format("{}, {}; checked the configuration and {}\n", countOf(counts.errors, "error"),
                              countOf(counts.warnings, "warning"), countOf(inputs.size() - 1, "document"));
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
