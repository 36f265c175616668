#include "cli/check/call_check.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/base/calendar.h"
#include "cli/base/file.h"
#include "cli/base/xml_reader.h"
#include "cli/check/claims.h"
#include "cli/check/configuration.h"
#include "cli/check/device_check.h"
#include "cli/check/document_text.h"
#include "cli/check/document_tree.h"
#include "cli/check/folding.h"

namespace fi_rotate {
namespace {

// The time stamp of one document.
struct SStamp {
    std::string text;
    SSpot spot;
    // The finding because of which it may not be what was written.
    std::optional<SCause> cause;
    // The findings of its document, borrowed.
    CFindings* findings = nullptr;
};

// What time stamps that sort as text have in common: digits, letters and other characters at the same places.
std::string formOf(std::string_view text) {
    std::string form(text);
    for (char& character : form) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isdigit(byte) != 0) {
            character = '0';
        } else if (std::isalpha(byte) != 0) {
            character = 'a';
        }
    }
    return form;
}

// The first stamp that has the form that most stamps have; of several such forms, of the one that comes
// first.
const SStamp& firstOfCommonestForm(const std::vector<SStamp>& stamps) {
    std::map<std::string, std::size_t> counts;
    for (const SStamp& stamp : stamps) {
        ++counts[formOf(stamp.text)];
    }
    return *std::max_element(stamps.begin(), stamps.end(),
                             [&counts](const SStamp& left, const SStamp& right) {
                                 return counts.at(formOf(left.text)) < counts.at(formOf(right.text));
                             });
}

// A time stamp of 14 digits is meant as a date, and sorts by time only if it is one.
void checkDates(const std::vector<SStamp>& stamps) {
    const std::string formOfDate = formOf("20261001013000");
    for (const SStamp& stamp : stamps) {
        if (formOf(stamp.text) == formOfDate && !parseTimeStamp(stamp.text).has_value()) {
            stamp.findings->add(
                {EHazard::kImpossibleDate, stamp.spot,
                 fmt::format("the time stamp {} is no date in the form YYYYMMDDhhmmss, so its "
                             "backup can count as older or newer than it is",
                             inQuotes(stamp.text)),
                 stamp.cause});
        }
    }
}

void checkForms(const std::vector<SStamp>& stamps) {
    const SStamp& pattern = firstOfCommonestForm(stamps);
    const std::string form = formOf(pattern.text);
    for (const SStamp& stamp : stamps) {
        if (formOf(stamp.text) != form) {
            stamp.findings->add(
                {EHazard::kMixedTimeStamps, stamp.spot,
                 fmt::format("the time stamp {} differs in {} from {} in {}", inQuotes(stamp.text),
                             stamp.text.size() == form.size() ? "form" : "width", inQuotes(pattern.text),
                             pattern.findings->input()),
                 stamp.cause});
        }
    }
}

// When the two backups also claim the same target, that finding is the cause of this one.
void checkEquals(const std::vector<SStamp>& stamps, const CClaims& claims) {
    std::map<std::string_view, const SStamp*> earlier;
    for (const SStamp& stamp : stamps) {
        const auto [entry, isNew] = earlier.emplace(stamp.text, &stamp);
        if (!isNew) {
            const auto report = claims.reportOf(*stamp.findings, *entry->second->findings);
            const auto claim = report.has_value()
                                   ? std::optional<SCause>({*report, EHazard::kTargetHeldBySeveral})
                                   : std::nullopt;
            stamp.findings->add({EHazard::kEqualTimeStamps, stamp.spot,
                                 fmt::format("{} has the time stamp {} too; it is undefined which of them "
                                             "counts as newer",
                                             entry->second->findings->input(), inQuotes(stamp.text)),
                                 stamp.cause.has_value() ? stamp.cause : claim});
        }
    }
}

// Compares the time stamps of a call, in the order of their documents, and adds to the findings of each
// document what is wrong with its own.
void checkTimeStamps(const std::vector<SStamp>& stamps, const CClaims& claims) {
    if (!stamps.empty()) {
        checkDates(stamps);
        checkForms(stamps);
        checkEquals(stamps, claims);
    }
}

class CCallCheck {
public:
    explicit CCallCheck(const SInputs& given) : inputs(given) {}

    std::vector<CFindings> run() {
        // Stamps and claims borrow findings, so these stay where they are.
        all.reserve(inputs.files.size() + 1);
        all.emplace_back(inputs.configurationName);
        CDeviceCheck devices(checkConfiguration(inputs.configuration, all.front()), inputs.configuration,
                             inputs.configurationName);
        const CXmlLibrary library;
        for (std::size_t i = 0; i < inputs.files.size(); ++i) {
            all.emplace_back(inputs.files[i]);
            checkFile(i, devices, all.back());
        }
        claims.report();
        checkTimeStamps(stamps, claims);
        setCausesOfRepetitions(all);
        return std::move(all);
    }

private:
    void checkFile(std::size_t index, CDeviceCheck& devices, CFindings& findings) {
        const std::string& file = inputs.files[index];
        if (!listed.insert(file).second) {
            findings.addOnWhole(EHazard::kListedTwice, "the document is listed already");
            return;
        }
        if (auto bytes = read(index, findings)) {
            checkDocument(std::move(*bytes), devices, findings);
        }
    }

    std::optional<std::string> read(std::size_t index, CFindings& findings) {
        const std::string& file = inputs.files[index];
        struct stat status = {};
        if (stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
            findings.addOnWhole(EHazard::kNotAFile,
                                S_ISDIR(status.st_mode)
                                    ? "this is a folder, which the library reads as an empty document"
                                    : "this is a device or a pipe, not a file; the check does not read it");
            return std::nullopt;
        }
        const CFile stream(std::fopen(file.c_str(), "rb"));
        if (stream == nullptr) {
            reportUnopened(index, findings);
            return std::nullopt;
        }
        auto bytes = readAll(stream.get());
        if (!bytes.has_value()) {
            findings.addOnWhole(EHazard::kReadError, "cannot be read to its end: " + errorText());
        }
        return bytes;
    }

    void reportUnopened(std::size_t index, CFindings& findings) {
        const std::string error = errorText();
        const std::string text = fmt::format("cannot be opened: {}; {}", error, withoutDocument(index));
        const auto [first, isNew] = unopened.emplace(error, findings.input());
        findings.addOnWhole(
            EHazard::kCannotOpen, text,
            isNew ? std::nullopt : std::optional<SCause>({first->second, EHazard::kCannotOpen}));
    }

    [[nodiscard]] std::string withoutDocument(std::size_t index) const {
        const std::size_t others = inputs.files.size() - index - 1;
        if (!unopened.empty()) {
            return "the library does not come this far, because an earlier document cannot be opened";
        }
        if (others == 0) {
            return "it is ignored";
        }
        return others == 1 ? "it and the document after it are ignored"
                           : fmt::format("it and the {} documents after it are ignored", others);
    }

    void checkDocument(std::string bytes, CDeviceCheck& devices, CFindings& findings) {
        auto document = std::make_unique<const CDocumentText>(std::move(bytes));
        document->addFindings(findings);
        if (document->isWide()) {
            return;
        }
        const SDocumentTree tree = readTree(*document, EForeign::kReadAsEmpty, findings);
        std::vector<SNamedTarget> named = devices.check(tree, *document, findings);
        if (tree.isCutShort) {
            // The library may have read more, and that the backup is invalid.
            named.clear();
        }
        if (tree.timeStamp.has_value() && !tree.timeStamp->text.empty()) {
            const SValue& stamp = *tree.timeStamp;
            const auto cause = stamp.distortedBy.has_value()
                                   ? std::optional<SCause>({findings.input(), *stamp.distortedBy})
                                   : std::nullopt;
            stamps.push_back(
                {stamp.text, document->spotAt(document->offsetOf(stamp.place)), cause, &findings});
        }
        if (!tree.nodes.empty()) {
            claims.add(tree.timeStamp.has_value() ? tree.timeStamp->text : "", named, std::move(document),
                       findings);
        }
    }

    const SInputs& inputs;
    std::vector<CFindings> all;
    std::vector<SStamp> stamps;
    CClaims claims;
    std::set<std::string> listed;
    // Why documents could not be opened, and the first one for each reason. The library reads none after the
    // first of them.
    std::map<std::string, std::string> unopened;
};

}  // namespace

std::vector<CFindings> checkCall(const SInputs& inputs) {
    return CCallCheck(inputs).run();
}

}  // namespace fi_rotate
