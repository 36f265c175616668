#include "cli/check/folding.h"

#include <fmt/format.h>

namespace fi_rotate {

void SCounts::add(const SFinding& finding) {
    const bool isError = kindOf(finding.hazard).severity == ESeverity::kError;
    (isError ? errors : warnings) += finding.count;
}

CFolding::CFolding(const std::vector<CFindings>& inputs) {
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            if (!finding.cause.has_value()) {
                shown.insert({findings.input(), finding.hazard});
            }
        }
    }
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            if (!isFolded(finding)) {
                continue;
            }
            SFold& fold = folds[{*finding.cause, finding.cause->hazard == finding.hazard}];
            fold.counts.add(finding);
            fold.hazards.insert(finding.hazard);
            if (fold.inputs.empty() || fold.inputs.back() != findings.input()) {
                fold.inputs.push_back(findings.input());
            }
            folded += finding.count;
        }
    }
}

bool CFolding::isFolded(const SFinding& finding) const {
    return finding.cause.has_value() && shown.count(*finding.cause) != 0;
}

std::vector<std::string> CFolding::linesUnder(const SCause& cause) const {
    std::vector<std::string> lines;
    for (const bool isSame : {true, false}) {
        if (const auto found = folds.find({cause, isSame}); found != folds.end()) {
            lines.push_back(textOf(found->second, cause, isSame));
        }
    }
    return lines;
}

std::string CFolding::textOf(const SFold& fold, const SCause& cause, bool isSame) {
    std::string text = isSame ? "the same: " : "consequences: ";
    if (fold.counts.errors > 0) {
        text += countOf(fold.counts.errors, "error");
    }
    if (fold.counts.warnings > 0) {
        text += (fold.counts.errors > 0 ? ", " : "") + countOf(fold.counts.warnings, "warning");
    }
    if (fold.inputs.size() > 1 || fold.inputs.front() != cause.input) {
        text += " in " + enumerate(fold.inputs);
    }
    std::vector<std::string_view> names;
    for (const EHazard hazard : fold.hazards) {
        names.push_back(kindOf(hazard).name);
    }
    return isSame ? text : fmt::format("{} [{}]", text, fmt::join(names, ", "));
}

std::string countOf(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count == 0 ? "no" : std::to_string(count), thing, count == 1 ? "" : "s");
}

}  // namespace fi_rotate
