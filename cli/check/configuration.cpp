#include "cli/check/configuration.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

struct SReference {
    std::string_view text;
    char meaning;
};
// None of them can overlap another, and no meaning makes a new one but '&', which the library decodes last.
// So one pass over the text decodes like its five.
constexpr SReference kReferences[] = {
    {"&#39;", '\''}, {"&quot;", '"'}, {"&gt;", '>'}, {"&lt;", '<'}, {"&amp;", '&'},
};

const SReference* referenceAt(std::string_view text) {
    const auto* const found =
        std::find_if(std::begin(kReferences), std::end(kReferences), [text](const SReference& reference) {
            return text.substr(0, reference.text.size()) == reference.text;
        });
    return found == std::end(kReferences) ? nullptr : found;
}

// A part of the decoded text and where it stands in the text as it was given.
struct SPiece {
    std::string_view text;
    std::size_t offset = 0;
};

// A configuration as the library reads it, up to its first NUL and with its references decoded, that
// remembers where everything stood.
class CConfigurationText {
public:
    // `text` is borrowed.
    explicit CConfigurationText(const std::string& text);
    ~CConfigurationText() = default;
    CConfigurationText(const CConfigurationText&) = delete;
    CConfigurationText& operator=(const CConfigurationText&) = delete;

    [[nodiscard]] SPiece whole() const { return {decoded, 0}; }

    // The parts of `piece`, which is one of this text, between runs of `separators`; none is empty.
    std::vector<SPiece> split(const SPiece& piece, const char* separators) const;

    // A finding with its place and the line around it.
    [[nodiscard]] SFinding findingAt(EHazard hazard, std::size_t offset, std::string what) const;

private:
    std::string_view given;
    CLines lines;
    std::string decoded;
    // Of each decoded character.
    std::vector<std::size_t> offsets;
};

CConfigurationText::CConfigurationText(const std::string& text) : given(text), lines(given) {
    const std::string_view read = given.substr(0, given.find('\0'));
    for (std::size_t offset = 0; offset < read.size();) {
        const SReference* const reference = read[offset] == '&' ? referenceAt(read.substr(offset)) : nullptr;
        decoded += reference == nullptr ? read[offset] : reference->meaning;
        offsets.push_back(offset);
        offset += reference == nullptr ? 1 : reference->text.size();
    }
}

std::vector<SPiece> CConfigurationText::split(const SPiece& piece, const char* separators) const {
    std::vector<SPiece> pieces;
    std::size_t begin = piece.text.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(piece.text.find_first_of(separators, begin), piece.text.size());
        const std::string_view part = piece.text.substr(begin, end - begin);
        pieces.push_back({part, offsets[static_cast<std::size_t>(part.data() - decoded.data())]});
        begin = piece.text.find_first_not_of(separators, end);
    }
    return pieces;
}

SFinding CConfigurationText::findingAt(EHazard hazard, std::size_t offset, std::string what) const {
    return {hazard, lines.at(offset), std::move(what)};
}

struct SFault {
    // In the text as it was given.
    std::size_t offset = 0;
    std::string text;
};

// What the library makes of a configuration.
struct SReading {
    std::vector<SConfiguration> used;
    // How many there are, the lost ones included.
    std::size_t count = 0;
    // What the first lost one is lost for.
    std::optional<SFault> fault;
};

// Reads one target. `carried` is the enclosure of the target before it.
SConfiguredTarget parseTarget(const SPiece& piece, const std::string& carried) {
    const std::size_t separator = piece.text.find("##");
    if (separator == std::string_view::npos) {
        return {carried, std::string(piece.text), piece.offset, true};
    }
    return {std::string(piece.text.substr(0, separator)), std::string(piece.text.substr(separator + 2)),
            piece.offset, false};
}

std::optional<std::string> faultOf(const SConfiguredTarget& target, bool isFirst) {
    if (target.device.empty()) {
        return "has no device";
    }
    if (isFirst && target.enclosure.empty()) {
        return "has no enclosure, which a first target needs";
    }
    return std::nullopt;
}

// Reads one configuration into `configuration`.
std::optional<SFault> parseConfiguration(const CConfigurationText& text, const SPiece& piece,
                                         SConfiguration& configuration) {
    const std::vector<SPiece> targets = text.split(piece, ";");
    if (targets.empty()) {
        return SFault{piece.offset, inQuotes(piece.text) + " has no targets"};
    }
    std::string carried;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        SConfiguredTarget target = parseTarget(targets[i], carried);
        if (const auto fault = faultOf(target, i == 0)) {
            return SFault{targets[i].offset, inQuotes(targets[i].text) + " " + *fault};
        }
        carried = target.enclosure;
        if (i == 0) {
            configuration.first = std::move(target);
        } else {
            configuration.further.push_back(std::move(target));
        }
    }
    return std::nullopt;
}

SReading parse(const CConfigurationText& text) {
    SReading reading;
    const std::vector<SPiece> pieces = text.split(text.whole(), "&\n\r");
    reading.count = pieces.size();
    for (const SPiece& piece : pieces) {
        SConfiguration configuration;
        reading.fault = parseConfiguration(text, piece, configuration);
        if (reading.fault.has_value()) {
            break;
        }
        reading.used.push_back(std::move(configuration));
    }
    return reading;
}

// "configuration 3", "configurations 3 to 5".
std::string range(std::size_t first, std::size_t last) {
    return first == last ? fmt::format("configuration {}", first)
                         : fmt::format("configurations {} to {}", first, last);
}

class CConfigurationCheck {
public:
    CConfigurationCheck(const CConfigurationText& given, CFindings& receiver)
        : text(given), findings(receiver) {}

    void run(const SReading& reading) {
        reportRejection(reading);
        const std::vector<SConfiguration>& used = reading.used;
        for (std::size_t i = 0; i < used.size(); ++i) {
            checkFirst(i, used[i]);
        }
        for (std::size_t i = 0; i < used.size(); ++i) {
            for (const SConfiguredTarget& target : used[i].further) {
                checkFurther(i, target);
            }
        }
    }

    void report(EHazard hazard, std::size_t offset, const std::string& what) {
        if (findings.isFull(hazard)) {
            findings.countAnother(hazard);
        } else {
            findings.add(text.findingAt(hazard, offset, what));
        }
    }

private:
    void reportRejection(const SReading& reading) {
        if (reading.count == 0) {
            report(EHazard::kNoConfiguration, 0,
                   "there is no configuration; the call succeeds with an empty selection");
        }
        if (!reading.fault.has_value()) {
            return;
        }
        const std::size_t used = reading.used.size();
        const std::string lost =
            range(used + 1, reading.count) + (used + 1 == reading.count ? " is lost, " : " are lost, ");
        const std::string left = used == 0 ? "none is left and the call succeeds with an empty selection"
                                           : range(1, used) + (used == 1 ? " is used" : " are used");
        report(EHazard::kConfigurationRejected, reading.fault->offset,
               "configuration rejected: " + reading.fault->text + "; " + lost + left);
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
            report(
                EHazard::kNoFurtherTargets, first.offset,
                inQuotes(first.name()) + " has no further targets, so that every call fails for want of one");
        }
        checkBlanks(first);
    }

    void checkFurther(std::size_t index, const SConfiguredTarget& target) {
        const std::string name = target.name();
        if (const auto found = firsts.find(name); found != firsts.end()) {
            report(EHazard::kFirstTargetRepeated, target.offset,
                   inQuotes(name) + " is the first target of " + range(found->second + 1, found->second + 1) +
                       " and can be chosen for a snapshot");
        }
        const auto [earlier, isNew] = furthers.emplace(name, index);
        if (!isNew && earlier->second == index) {
            report(EHazard::kTargetRepeated, target.offset,
                   inQuotes(name) + " stands in its configuration already");
        } else if (!isNew) {
            report(EHazard::kTargetInTwoConfigurations, target.offset,
                   inQuotes(name) + " stands in " + range(earlier->second + 1, earlier->second + 1) +
                       " already");
            earlier->second = index;
        }
        checkBlanks(target);
    }

    void checkBlanks(const SConfiguredTarget& target) {
        const auto hasBlank = [](const std::string& name) {
            constexpr const char* kBlanks = " \t";
            return !name.empty() && (std::strchr(kBlanks, name.front()) != nullptr ||
                                     std::strchr(kBlanks, name.back()) != nullptr);
        };
        if (hasBlank(target.device) || (!target.isEnclosureCarried && hasBlank(target.enclosure))) {
            report(EHazard::kBlankInTarget, target.offset,
                   inQuotes(target.name()) + " has a blank at the start or end of a name");
        }
    }

    const CConfigurationText& text;
    CFindings& findings;
    // Names of targets and the last configuration, counted from 0, that holds them.
    std::unordered_map<std::string, std::size_t> firsts;
    std::unordered_map<std::string, std::size_t> furthers;
};

}  // namespace

std::vector<SConfiguration> checkConfiguration(const std::string& text, CFindings& findings) {
    const CConfigurationText given(text);
    CConfigurationCheck check(given, findings);
    if (const std::size_t nul = text.find('\0'); nul != std::string::npos) {
        check.report(EHazard::kNulByte, nul, "a NUL byte ends the configuration here");
    }
    SReading reading = parse(given);
    check.run(reading);
    return std::move(reading.used);
}

}  // namespace fi_rotate
