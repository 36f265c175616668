#include "cli/check/folding.h"

#include <utility>

#include <fmt/format.h>

namespace fi_rotate {
namespace {

// Equal for findings that report the same mistake: the text without what is quoted, because the quoted names
// and values differ between documents. For a pair that matches nothing, and for a target that several backups
// hold, the quoted names are the mistake itself, so they are compared too.
std::pair<EHazard, std::string> kindOfFault(const SFinding& finding) {
    if (finding.hazard == EHazard::kPairMatchesNothing || finding.hazard == EHazard::kTargetHeldBySeveral) {
        return {finding.hazard, finding.text};
    }
    std::string words;
    bool isQuoted = false;
    for (const char character : finding.text) {
        isQuoted = isQuoted != (character == '"');
        if (!isQuoted) {
            words += character;
        }
    }
    return {finding.hazard, words};
}

// The hazards of an input whose findings there are all repetitions or consequences of others, each with the
// hazard of the earlier input that is repeated.
std::map<SCause, SCause> repetitionsIn(const CFindings& findings) {
    std::map<SCause, SCause> repetitions;
    const std::vector<SFinding> rows = findings.inOrder();
    for (const SFinding& finding : rows) {
        if (finding.cause.has_value() && finding.cause->hazard == finding.hazard &&
            finding.cause->input != findings.input()) {
            repetitions.emplace(SCause{findings.input(), finding.hazard}, *finding.cause);
        }
    }
    for (const SFinding& finding : rows) {
        if (!finding.cause.has_value()) {
            repetitions.erase({findings.input(), finding.hazard});
        }
    }
    return repetitions;
}

}  // namespace

void setCausesOfRepetitions(std::vector<CFindings>& inputs) {
    // What was told, and of which input first.
    std::map<std::pair<EHazard, std::string>, std::string> told;
    std::map<SCause, SCause> repetitions;
    for (CFindings& findings : inputs) {
        findings.changeCauses([&](const SFinding& finding) {
            if (finding.cause.has_value()) {
                return finding.cause;
            }
            const std::string& first = told.emplace(kindOfFault(finding), findings.input()).first->second;
            return first == findings.input() ? std::nullopt : std::optional<SCause>({first, finding.hazard});
        });
        repetitions.merge(repetitionsIn(findings));
    }
    for (CFindings& findings : inputs) {
        findings.changeCauses([&repetitions](const SFinding& finding) {
            const auto found =
                finding.cause.has_value() ? repetitions.find(*finding.cause) : repetitions.end();
            return found == repetitions.end() ? finding.cause : found->second;
        });
    }
}

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
        text += countInWords(fold.counts.errors, "error");
    }
    if (fold.counts.warnings > 0) {
        text += (fold.counts.errors > 0 ? ", " : "") + countInWords(fold.counts.warnings, "warning");
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

std::string countInWords(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count == 0 ? "no" : std::to_string(count), thing, count == 1 ? "" : "s");
}

}  // namespace fi_rotate
