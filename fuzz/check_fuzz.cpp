// The input is a configuration and documents, separated by lines "%%". For every input: each finding has a
// place in its input, and findings are in order; a report counts what it shows and has a line for each.
// Without entities, the configurations, the content, the tree and the identifiers are those that the library
// reads; an exception leaves a call exactly when a finding says so; a backup with a pair that matches nothing
// is invalid; one without a Node is ignored.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/check/call_check.h"
#include "cli/check/configuration.h"
#include "cli/check/document_text.h"
#include "cli/check/document_tree.h"
#include "cli/check/report.h"
#include "driver/CFiTreeDeleter.h"
#include "driver/fi_process_backups.h"
#include "fiid/CFiFiidLoader.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "fiid/CFiXmlLibrary.h"
#include "fuzz/Document.h"
#include "fuzz/RootCollector.h"
#include "fuzz/parts.h"
#include "fuzz/require.h"
#include "host/identifier.h"
#include "resource/CFiResourceParser.h"
#include "resource/CFiUdid.h"
#include "resource/CFiUdidException.h"

namespace {

using fi_rotate::CFindings;
using fi_rotate::EHazard;
using fi_rotate::SFinding;

using Pairs = std::map<std::string, std::string>;

constexpr std::size_t kMostParts = 4;

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines{text.substr(0, 0)};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' || (text[i] == '\r' && text.substr(i, 2) != "\r\n")) {
            lines.push_back(text.substr(i + 1, 0));
        } else {
            lines.back() = {lines.back().data(), lines.back().size() + 1};
        }
    }
    return lines;
}

bool has(const CFindings& findings, EHazard hazard) {
    const std::vector<SFinding> all = findings.inOrder();
    return std::any_of(all.begin(), all.end(),
                       [hazard](const SFinding& finding) { return finding.hazard == hazard; });
}

bool saysException(const CFindings& findings) {
    constexpr std::string_view kEnd = "an exception ends the call";
    const std::vector<SFinding> all = findings.inOrder();
    return std::any_of(all.begin(), all.end(), [kEnd](const SFinding& finding) {
        return finding.text.size() >= kEnd.size() &&
               finding.text.compare(finding.text.size() - kEnd.size(), kEnd.size(), kEnd) == 0;
    });
}

void requirePlaces(const CFindings& findings, const std::string& input) {
    const std::vector<std::string_view> lines = linesOf(input);
    fi_rotate::SPlace last;
    for (const SFinding& finding : findings.inOrder()) {
        const fi_rotate::SPlace place = finding.spot.place;
        require(place.line >= 1 && place.line <= lines.size(), "a line is one of the input");
        require(place.column >= 1 && place.column <= lines[place.line - 1].size() + 1,
                "a column is one of its line");
        require(std::pair(last.line, last.column) <= std::pair(place.line, place.column),
                "findings are in order");
        require(finding.spot.caret <= finding.spot.excerpt.size(), "a caret stands in its excerpt");
        require(input.find(finding.spot.excerpt) != std::string::npos, "an excerpt is part of the input");
        last = place;
    }
}

std::set<fi_rotate::SCause> causesAmong(const std::vector<CFindings>& inputs) {
    std::set<fi_rotate::SCause> causes;
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            if (!finding.cause.has_value()) {
                causes.insert({findings.input(), finding.hazard});
            }
        }
    }
    return causes;
}

void requireReport(const std::vector<CFindings>& inputs) {
    std::size_t lines = 1;
    fi_rotate::SCounts counts;
    const std::set<fi_rotate::SCause> causes = causesAmong(inputs);
    std::set<std::pair<fi_rotate::SCause, bool>> folds;
    for (const CFindings& findings : inputs) {
        for (const SFinding& finding : findings.inOrder()) {
            if (finding.cause.has_value()) {
                require(causes.count(*finding.cause) != 0, "a cause was found and has none itself");
                folds.insert({*finding.cause, finding.cause->hazard == finding.hazard});
            } else {
                lines += finding.spot.excerpt.empty() ? 1 : 3;
            }
            const bool isError = kindOf(finding.hazard).severity == fi_rotate::ESeverity::kError;
            (isError ? counts.errors : counts.warnings) += finding.count;
        }
    }
    const fi_rotate::SCounts told = countAll(inputs);
    require(told.errors == counts.errors && told.warnings == counts.warnings,
            "the counts are those of the findings");
    constexpr std::size_t kWidth = 40;
    const std::string text = toText(inputs, kWidth, false);
    require(
        static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) == lines + folds.size(),
        "a report has a line for each finding without a cause, two for each excerpt, one for what follows "
        "from a cause, one for what repeats it, and one more");
    require(std::none_of(text.begin(), text.end(),
                         [](char character) {
                             const auto byte = static_cast<unsigned char>(character);
                             return (byte < 0x20 && character != '\n') || byte == 0x7F;
                         }),
            "a report can be printed");
    require(!toJson(inputs).empty(), "findings fit into JSON");
}

void requireIdentifier(const std::string& text) {
    const fi_rotate::SIdentifier identifier = fi_rotate::parseIdentifier(text);
    CFiUdid expected;
    try {
        expected.parse(text);
        require(!identifier.fault.has_value(), "an identifier of the library is one");
        require(identifier.enclosure == expected.enclosure && identifier.device == expected.device,
                "an identifier names what it names to the library");
    } catch (const CFiUdidException& malformed) {
        require(identifier.fault == malformed.code, "an identifier has the library's fault");
    }
}

void requireTree(const std::string& bytes) {
    const fi_rotate::CDocumentText document(bytes);
    std::string content;
    const CFiFiidLoader loader;
    require(loader.load(CDocument(bytes).name(), content) == CFiFiidLoader::kLoaded &&
                document.content() == content,
            "the content is that of the library");
    CFindings findings("");
    const fi_rotate::SDocumentTree tree = readTree(document, fi_rotate::EForeign::kReadAsEmpty, findings);
    if (has(findings, EHazard::kDoctype) || has(findings, EHazard::kReadingLimit)) {
        return;
    }
    CFiFiidParser parser(nullptr);
    CRootCollector handler;
    const CFiTreeDeleter deleter(handler.roots);
    parser.setHandler(&handler);
    parser.parse(document.content());
    require((handler.root == nullptr) == tree.nodes.empty(), "there is a tree if the library has one");
    if (handler.root == nullptr) {
        return;
    }
    Pairs expected;
    handler.root->getNodes("UDID##", expected);
    Pairs pairs;
    for (const fi_rotate::SNode& node : tree.nodes) {
        if (isDevice(node)) {
            pairs[node.objid->text] = node.altobjid.has_value() ? node.altobjid->text : "";
        }
    }
    require(pairs == expected, "pairs are those of the library");
    for (const auto& [objid, altobjid] : pairs) {
        requireIdentifier(objid);
        requireIdentifier(altobjid);
    }
    require((tree.timeStamp.has_value() ? tree.timeStamp->text : "") == handler.root->timeStamp,
            "the time stamp is that of the library");
}

void requireConfigurations(const std::string& text) {
    CFindings findings("");
    const std::vector<fi_rotate::SConfiguration> used = checkConfiguration(text, findings).used;
    if (has(findings, EHazard::kLongEnclosure)) {
        return;
    }
    CFiResourceParser parser;
    parser.parse(text.c_str());
    require(used.size() == parser.configurations.size(), "configurations are those of the library");
    for (std::size_t i = 0; i < used.size(); ++i) {
        const SFiResourceList& expected = parser.configurations[i];
        require(used[i].first.name() == expected.enclosure + "##" + expected.device,
                "a first target is that of the library");
        require(used[i].further.size() == expected.resources.size(),
                "a configuration has the library's further targets");
        for (std::size_t j = 0; j < used[i].further.size(); ++j) {
            const SFiResource& target = expected.resources[j];
            require(used[i].further[j].name() == target.enclosure + "##" + target.device,
                    "a further target is that of the library");
        }
    }
}

// Requires that a call has the outcome that the findings say.
void requireCall(const fi_rotate::SInputs& inputs, const std::vector<CFindings>& findings) {
    for (const CFindings& some : findings) {
        // With several top-level Nodes the call would leave all but the last one allocated.
        if (has(some, EHazard::kDoctype) || has(some, EHazard::kUtf16) || has(some, EHazard::kSeveralNodes) ||
            has(some, EHazard::kReadingLimit) || has(some, EHazard::kLongEnclosure)) {
            return;
        }
    }
    constexpr std::int32_t kUntouched = 8;
    std::vector<const char*> files;
    for (const std::string& file : inputs.files) {
        files.push_back(file.c_str());
    }
    std::vector<std::int32_t> flags(files.size(), kUntouched);
    const bool isThrowing = std::any_of(findings.begin(), findings.end(), saysException);
    char* selection = nullptr;
    std::int32_t status = -1;
    try {
        status = fi_process_backups(files.data(), inputs.configuration.c_str(), flags.data(),
                                    static_cast<std::int32_t>(files.size()), &selection);
        require(!isThrowing, "an exception leaves the call when a finding says so");
    } catch (const CFiUdidException&) {
        require(isThrowing, "an exception leaves the call only when a finding says so");
    }
    if (status != FI_STATUS_SUCCESS) {
        return;
    }
    std::free(selection);
    require(!has(findings.front(), EHazard::kNoFurtherTargets),
            "without further targets there is no selection");
    for (std::size_t i = 0; i < flags.size(); ++i) {
        const CFindings& some = findings[i + 1];
        require(has(some, EHazard::kNoNode) == (flags[i] == kUntouched),
                "a document without a Node is ignored");
        if (has(some, EHazard::kPairMatchesNothing) || has(some, EHazard::kTargetHeldTwice)) {
            require(flags[i] == FI_BACKUP_INVALID, "a backup that cannot be claimed is invalid");
        }
        if (has(some, EHazard::kNoDevice)) {
            require(flags[i] != FI_BACKUP_INVALID, "a backup without devices agrees");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Initialising the XML library for every input would take most of the time.
    static const CFiXmlLibrary held;
    const std::vector<std::string> parts =
        partsOf(std::string(reinterpret_cast<const char*>(data), size), kMostParts);
    std::vector<CDocument> documents;
    fi_rotate::SInputs inputs{parts.front(), "configuration", {}};
    for (std::size_t i = 1; i < parts.size(); ++i) {
        documents.emplace_back(parts[i]);
        inputs.files.push_back(documents.back().name());
    }

    const std::vector<CFindings> findings = checkCall(inputs);
    require(findings.size() == parts.size(), "each input has its findings");
    for (std::size_t i = 0; i < parts.size(); ++i) {
        requirePlaces(findings[i], parts[i]);
    }
    requireReport(findings);
    require(toJson(checkCall(inputs)) == toJson(findings), "the same inputs have the same findings");

    requireConfigurations(parts.front());
    std::for_each(parts.begin() + 1, parts.end(), requireTree);
    requireCall(inputs, findings);
    return 0;
}
