#include "cli/check/configuration.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "cli/base/text.h"
#include "cli/check/document_text.h"
#include "cli/check/nearest.h"

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
    // The targets of its configuration, as they are written.
    std::vector<std::string> targets;
    // What is malformed, as it is written.
    std::string target;
};

// What the library makes of a configuration.
struct SReading {
    std::vector<SConfiguration> used;
    // How many there are, the lost ones included.
    std::size_t count = 0;
    // What the first lost one is lost for.
    std::optional<SFault> fault;
    // Those of the lost ones whose first target can be read, with as many of the others as can.
    std::vector<SConfiguration> lost;
    // The targets of the others, as they are written.
    std::vector<std::vector<std::string>> malformed;
};

constexpr std::string_view kSeparator = "##";

// Reads one target. `carried` is the enclosure of the target before it.
SConfiguredTarget parseTarget(const SPiece& piece, const std::string& carried) {
    const std::size_t separator = piece.text.find(kSeparator);
    if (separator == std::string_view::npos) {
        return {carried, std::string(piece.text), piece.offset, true};
    }
    return {std::string(piece.text.substr(0, separator)),
            std::string(piece.text.substr(separator + kSeparator.size())), piece.offset, false};
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

std::vector<std::string> textsOf(const std::vector<SPiece>& pieces) {
    std::vector<std::string> texts;
    texts.reserve(pieces.size());
    for (const SPiece& piece : pieces) {
        texts.emplace_back(piece.text);
    }
    return texts;
}

// Reads one configuration into `configuration`.
std::optional<SFault> parseConfiguration(const CConfigurationText& text, const SPiece& piece,
                                         SConfiguration& configuration) {
    const std::vector<SPiece> targets = text.split(piece, ";");
    if (targets.empty()) {
        return SFault{piece.offset, inQuotes(piece.text) + " has no targets", {}, std::string(piece.text)};
    }
    std::string carried;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        SConfiguredTarget target = parseTarget(targets[i], carried);
        if (const auto fault = faultOf(target, i == 0)) {
            return SFault{targets[i].offset, inQuotes(targets[i].text) + " " + *fault, textsOf(targets),
                          std::string(targets[i].text)};
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
        const std::optional<SFault> fault = parseConfiguration(text, piece, configuration);
        if (!reading.fault.has_value()) {
            reading.fault = fault;
        }
        if (!reading.fault.has_value()) {
            reading.used.push_back(std::move(configuration));
        } else if (!configuration.first.device.empty()) {
            reading.lost.push_back(std::move(configuration));
        } else if (fault.has_value()) {
            reading.malformed.push_back(fault->targets);
        }
    }
    return reading;
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kBlanks = " \t";

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

std::string withoutMark(const std::string& name) {
    return startsWith(name, kByteOrderMark) ? name.substr(kByteOrderMark.size()) : name;
}

std::string withoutBlanks(const std::string& name) {
    const std::size_t begin = std::min(name.find_first_not_of(kBlanks), name.size());
    return name.substr(begin, name.find_last_not_of(kBlanks) + 1 - begin);
}

// `configuration` with other names.
template <typename Change>
SConfiguration changed(SConfiguration configuration, const Change& change) {
    const auto apply = [&change](SConfiguredTarget& target) {
        target.enclosure = change(target.enclosure);
        target.device = change(target.device);
    };
    apply(configuration.first);
    std::for_each(configuration.further.begin(), configuration.further.end(), apply);
    return configuration;
}

std::string writtenAs(const SConfiguredTarget& target) {
    return target.isEnclosureCarried ? target.device : target.name();
}

// `configuration` with a semicolon in place of each comma.
SConfiguration withoutCommas(const SConfiguration& configuration) {
    std::string text = writtenAs(configuration.first);
    for (const SConfiguredTarget& target : configuration.further) {
        text += ';' + writtenAs(target);
    }
    std::replace(text.begin(), text.end(), ',', ';');
    const CConfigurationText separated(text);
    SConfiguration meant;
    parseConfiguration(separated, separated.whole(), meant);
    return meant;
}

// Where the first blank within `text` from `begin` on is; npos when blanks are only at its ends.
std::size_t innerBlank(const std::string& text, std::size_t begin) {
    const std::size_t name = text.find_first_not_of(kBlanks, begin);
    const std::size_t blank = text.find_first_of(kBlanks, name);
    return text.find_first_not_of(kBlanks, blank) == std::string::npos ? std::string::npos : blank;
}

// The target at `position` of `configuration`, whose first target is at 0.
const SConfiguredTarget& targetAt(const SConfiguration& configuration, std::size_t position) {
    return position == 0 ? configuration.first : configuration.further[position - 1];
}

// Whether `device` looks like that of a target beside `position`, or `enclosure` is that of the first target.
bool isLikeOthers(const SConfiguration& configuration, std::size_t position, std::string_view device,
                  std::string_view enclosure) {
    const auto isLike = [&](std::size_t other) {
        return differOnlyInDigits(targetAt(configuration, other).device, device);
    };
    return enclosure == configuration.first.enclosure || (position > 0 && isLike(position - 1)) ||
           (position < configuration.further.size() && isLike(position + 1));
}

// Where, in what is written for the target at `position`, a blank probably stands for a line end, so that the
// first target of another configuration, with its enclosure, is behind it; npos when there is none.
// Enclosures may be called so that a blank is in the name: then what is before the blank does not look like a
// target.
std::size_t lostLineEnd(const SConfiguration& configuration, std::size_t position) {
    const SConfiguredTarget& target = targetAt(configuration, position);
    if (target.isEnclosureCarried) {
        return std::string::npos;
    }
    const std::string written = writtenAs(target);
    const bool isInDevice = target.device.find(kSeparator) != std::string::npos;
    const std::size_t begin = isInDevice ? target.enclosure.size() + kSeparator.size() : 0;
    const std::size_t separator = written.find(kSeparator, begin);
    const std::size_t blank = innerBlank(written, begin);
    if (blank == std::string::npos || blank > separator) {
        return std::string::npos;
    }
    const std::size_t enclosure = written.find_first_not_of(kBlanks, blank);
    const bool isLost = isInDevice || isLikeOthers(configuration, position, written.substr(0, blank),
                                                   written.substr(enclosure, separator - enclosure));
    return isLost ? blank : std::string::npos;
}

// The configurations that `configuration` is with a line end in place of each blank that probably stands for
// one.
std::vector<SConfiguration> withLineEnds(const SConfiguration& configuration) {
    std::string text;
    for (std::size_t position = 0; position <= configuration.further.size(); ++position) {
        std::string written = writtenAs(targetAt(configuration, position));
        const std::size_t blank = lostLineEnd(configuration, position);
        if (blank != std::string::npos) {
            written[blank] = '\n';
        }
        text += written + ';';
    }
    SReading meant = parse(CConfigurationText(text));
    std::move(meant.lost.begin(), meant.lost.end(), std::back_inserter(meant.used));
    return std::move(meant.used);
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
        : bytes(whole), text(given), reading(parse(given)), findings(receiver) {}

    SConfigurations run() {
        checkBytes();
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

    void reportRejection(const SFault& fault) {
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

    [[nodiscard]] std::optional<EHazard> causeOfRejection(const SFault& fault) const {
        const bool isMark = fault.target == kByteOrderMark;
        return isMark ? EHazard::kByteOrderMark : causeAt(reading.used.size());
    }

    // The order matters: of several causes for one target, the one that is added first is reported.
    void gatherUnread() {
        if (cut == EHazard::kUtf16) {
            unread.setCauseOfAll(EHazard::kUtf16);
        }
        if (startsWith(bytes, kByteOrderMark) && !reading.used.empty()) {
            unread.addConfiguration(changed(reading.used.front(), withoutMark), EHazard::kByteOrderMark);
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
                    unread.addConfiguration(changed(meant, withoutBlanks), EHazard::kBlankInTarget);
                }
            }
        }
        if (findings.has(EHazard::kCommaInTarget)) {
            for (const SConfiguration& configuration : reading.used) {
                unread.addConfiguration(changed(withoutCommas(configuration), withoutBlanks),
                                        EHazard::kCommaInTarget);
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
        const SReading meant = parse(CConfigurationText(whole));
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
    SReading reading;
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
