#include "cli/check/configuration.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "cli/base/text.h"
#include "cli/check/document_text.h"
#include "cli/check/meant_configuration.h"
#include "host/configuration_text.h"

namespace fi_rotate {
namespace {

// The encoding of `text` if its characters are wider than a byte: as a mark at its start tells, or NUL bytes
// beside its first two.
std::optional<std::string_view> wideEncodingOf(std::string_view text) {
    if (startsWith(text, "\xFE\xFF") || startsWith(text, "\xFF\xFE")) {
        return wideEncoding(text);
    }
    constexpr std::size_t kLength = 4;
    std::string form;
    for (const char byte : text.substr(0, kLength)) {
        form += byte == '\0' ? '0' : 'x';
    }
    return form == "x0x0" || form == "0x0x" ? std::optional<std::string_view>("UTF-16") : std::nullopt;
}

bool isCopy(const SConfiguration& left, const SConfiguration& right) {
    return left.first.name() == right.first.name() &&
           std::equal(
               left.further.begin(), left.further.end(), right.further.begin(), right.further.end(),
               [](const SConfiguredTarget& a, const SConfiguredTarget& b) { return a.name() == b.name(); });
}

// "configuration 3", "configurations 3 to 5".
std::string range(std::size_t first, std::size_t last) {
    return first == last ? fmt::format("configuration {}", first)
                         : fmt::format("configurations {} to {}", first, last);
}

class CConfigurationCheck {
public:
    CConfigurationCheck(const std::string& whole, const CConfigurationText& given, CFindings& receiver)
        : bytes(whole), text(given), findings(receiver) {}

    SConfigurations run() {
        checkBytes();
        if (const auto enclosure = findLongEnclosure(bytes)) {
            return withoutConfigurations(*enclosure);
        }
        reading = parseConfigurations(text);
        checkReading();
        const std::vector<SConfiguration>& used = reading.used;
        for (std::size_t i = 0; i < used.size(); ++i) {
            checkFirst(i, used[i]);
        }
        for (std::size_t i = 0; i < used.size(); ++i) {
            for (std::size_t position = 1; position <= used[i].further.size(); ++position) {
                checkFurther(i, position);
            }
        }
        gatherUnread();
        return {std::move(reading.used), std::move(unread)};
    }

private:
    void report(EHazard hazard, std::size_t offset, const std::string& what,
                const std::optional<EHazard>& causedBy = std::nullopt) {
        const auto cause =
            causedBy.has_value() ? std::optional<SCause>({findings.input(), *causedBy}) : std::nullopt;
        if (findings.isFull(hazard, cause)) {
            findings.countAnother(hazard, cause);
        } else {
            SFinding finding = text.findingAt(hazard, offset, what);
            finding.cause = cause;
            findings.add(std::move(finding));
        }
    }

    void checkBytes() {
        if (const auto encoding = wideEncodingOf(bytes)) {
            report(EHazard::kUtf16, 0,
                   fmt::format(
                       "the configuration is encoded in {}, so it is read only up to its first NUL byte; "
                       "save it as UTF-8",
                       *encoding));
            cut = EHazard::kUtf16;
        } else if (startsWith(bytes, kByteOrderMark)) {
            report(EHazard::kByteOrderMark, 0,
                   "a byte-order mark becomes part of the name of the first enclosure, so no backup "
                   "matches it; save the configuration without the mark");
        }
        if (const std::size_t nul = bytes.find('\0'); nul != std::string::npos) {
            report(EHazard::kNulByte, nul, "a NUL byte ends the configuration here", cut);
            cut = cut.value_or(EHazard::kNulByte);
        }
    }

    // Reading them could take more memory than there is.
    SConfigurations withoutConfigurations(const SLongEnclosure& enclosure) {
        report(EHazard::kLongEnclosure, enclosure.offset,
               fmt::format("an enclosure has {} bytes and may have {}; the configuration is not checked",
                           enclosure.length, kLongestEnclosure));
        unread.setCauseOfAll(EHazard::kLongEnclosure);
        return {{}, std::move(unread)};
    }

    // The last configuration can be wrong only because the text is cut off there.
    [[nodiscard]] std::optional<EHazard> causeAt(std::size_t index) const {
        return index + 1 >= reading.count ? cut : std::nullopt;
    }

    void checkReading() {
        if (reading.count == 0) {
            report(EHazard::kNoConfiguration, 0,
                   "there is no configuration; a call succeeds with an empty selection", cut);
            unread.setCauseOfAll(cut.value_or(EHazard::kNoConfiguration));
        }
        if (reading.fault.has_value()) {
            reportRejection(*reading.fault);
        }
    }

    void reportRejection(const SConfigurationFault& fault) {
        const std::size_t used = reading.used.size();
        const std::string unused = range(used + 1, reading.count) +
                                   (used + 1 == reading.count ? " is not used, " : " are not used, ");
        const std::string rest = used == 0 ? "and a call succeeds with an empty selection"
                                           : "but " + range(1, used) + (used == 1 ? " is" : " are");
        const bool isComment = startsWith(fault.target, "#");
        report(EHazard::kConfigurationRejected, fault.offset,
               "configuration rejected: " + fault.text +
                   (isComment ? " (a configuration cannot contain comments)" : "") + "; " + unused + rest,
               causeOfRejection(fault));
    }

    [[nodiscard]] std::optional<EHazard> causeOfRejection(const SConfigurationFault& fault) const {
        const bool isMark = fault.target == kByteOrderMark;
        return isMark ? EHazard::kByteOrderMark : causeAt(reading.used.size());
    }

    // The order matters: of several causes for one target, the one that is added first is reported.
    void gatherUnread() {
        if (cut == EHazard::kUtf16) {
            unread.setCauseOfAll(EHazard::kUtf16);
        }
        if (startsWith(bytes, kByteOrderMark) && !reading.used.empty()) {
            unread.addConfiguration(withoutMark(reading.used.front()), EHazard::kByteOrderMark);
        }
        if (cut == EHazard::kNulByte) {
            gatherBehindNul();
        }
        if (reading.fault.has_value()) {
            gatherRejected(causeOfRejection(*reading.fault).value_or(EHazard::kConfigurationRejected));
        }
        if (findings.has(EHazard::kBlankInTarget)) {
            for (const SConfiguration& configuration : reading.used) {
                for (const SConfiguration& meant : withLineEnds(configuration)) {
                    unread.addConfiguration(meant, EHazard::kBlankInTarget);
                }
            }
        }
        if (findings.has(EHazard::kCommaInTarget)) {
            for (const SConfiguration& configuration : reading.used) {
                unread.addConfiguration(withoutCommas(configuration), EHazard::kCommaInTarget);
            }
        }
    }

    void gatherRejected(EHazard cause) {
        if (reading.used.empty()) {
            unread.setCauseOfAll(cause);
            return;
        }
        for (const SConfiguration& lost : reading.lost) {
            unread.addConfiguration(lost, cause);
        }
        // What a separator within a name cuts off belongs to the configuration before it.
        const std::string precedingFirst = reading.used.back().first.name();
        for (const std::vector<std::string>& targets : reading.malformed) {
            unread.addMalformed(precedingFirst, targets, cause);
        }
    }

    // What would have been read without the NUL bytes.
    void gatherBehindNul() {
        std::string whole = bytes;
        whole.erase(std::remove(whole.begin(), whole.end(), '\0'), whole.end());
        const SReadConfigurations meant = parseConfigurations(CConfigurationText(whole));
        for (const auto* const configurations : {&meant.used, &meant.lost}) {
            for (const SConfiguration& configuration : *configurations) {
                unread.addConfiguration(configuration, EHazard::kNulByte);
            }
        }
    }

    void checkFirst(std::size_t index, const SConfiguration& configuration) {
        const SConfiguredTarget& first = configuration.first;
        const auto [earlier, isNew] = firsts.emplace(first.name(), index);
        if (!isNew) {
            report(EHazard::kDeviceConfiguredTwice, first.offset,
                   inQuotes(first.name()) + " is the first target of " +
                       range(earlier->second + 1, earlier->second + 1) + " too");
        }
        if (configuration.further.empty()) {
            const auto cause = causeAt(index);
            report(EHazard::kNoFurtherTargets, first.offset,
                   inQuotes(first.name()) + " has no further targets, so no call can succeed", cause);
            unread.addFurtherTargetsOf(first.name(), cause.value_or(EHazard::kNoFurtherTargets));
        }
        checkName(configuration, 0);
    }

    void checkFurther(std::size_t index, std::size_t position) {
        const SConfiguredTarget& target = targetAt(reading.used[index], position);
        const std::string name = target.name();
        if (const auto found = firsts.find(name); found != firsts.end()) {
            report(EHazard::kFirstTargetRepeated, target.offset,
                   inQuotes(name) + " is the first target of " + range(found->second + 1, found->second + 1) +
                       " too, so a snapshot can overwrite it");
        }
        const auto [earlier, isNew] = furthers.emplace(name, index);
        if (!isNew && earlier->second == index) {
            report(EHazard::kTargetRepeated, target.offset,
                   inQuotes(name) + " is already in this configuration");
        } else if (!isNew) {
            report(EHazard::kTargetInTwoConfigurations, target.offset,
                   inQuotes(name) + " is already in " + range(earlier->second + 1, earlier->second + 1),
                   isCopy(reading.used[earlier->second], reading.used[index])
                       ? std::optional<EHazard>(EHazard::kDeviceConfiguredTwice)
                       : std::nullopt);
            earlier->second = index;
        }
        checkName(reading.used[index], position);
    }

    void checkName(const SConfiguration& configuration, std::size_t position) {
        const SConfiguredTarget& target = targetAt(configuration, position);
        const auto hasBlank = [](const std::string& name) {
            return !name.empty() && (std::strchr(kBlanks, name.front()) != nullptr ||
                                     std::strchr(kBlanks, name.back()) != nullptr);
        };
        if (lostLineEnd(configuration, position) != std::string::npos) {
            report(EHazard::kBlankInTarget, target.offset,
                   inQuotes(writtenAs(target)) +
                       " is one target; line ends or & separate configurations, not blanks");
        } else if (hasBlank(target.device) || (!target.isEnclosureCarried && hasBlank(target.enclosure))) {
            report(EHazard::kBlankInTarget, target.offset,
                   inQuotes(target.name()) + " has a name that begins or ends with a blank");
        }
        if (writtenAs(target).find(',') != std::string::npos) {
            report(EHazard::kCommaInTarget, target.offset,
                   inQuotes(target.name()) + " is one target; a semicolon separates targets, not a comma");
        }
    }

    const std::string& bytes;
    const CConfigurationText& text;
    SReadConfigurations reading;
    CFindings& findings;
    // What cuts the text off.
    std::optional<EHazard> cut;
    CUnread unread;
    // Names of targets and the last configuration, counted from 0, that holds them.
    std::unordered_map<std::string, std::size_t> firsts;
    std::unordered_map<std::string, std::size_t> furthers;
};

}  // namespace

SConfigurations checkConfiguration(const std::string& text, CFindings& findings) {
    const CConfigurationText given(text);
    return CConfigurationCheck(text, given, findings).run();
}

}  // namespace fi_rotate
