#include "cli/check/configuration_reading.h"

#include <algorithm>
#include <utility>

#include "cli/base/text.h"
#include "host/configuration_text.h"

namespace fi_rotate {
namespace {

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

}  // namespace

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

std::string writtenAs(const SConfiguredTarget& target) {
    return target.isEnclosureCarried ? target.device : target.name();
}

const SConfiguredTarget& targetAt(const SConfiguration& configuration, std::size_t position) {
    return position == 0 ? configuration.first : configuration.further[position - 1];
}

std::optional<SConfigurationFault> parseConfiguration(const CConfigurationText& text, const SPiece& piece,
                                                      SConfiguration& configuration) {
    const std::vector<SPiece> targets = text.split(piece, ";");
    if (targets.empty()) {
        return SConfigurationFault{
            piece.offset, inQuotes(piece.text) + " has no targets", {}, std::string(piece.text)};
    }
    std::string carried;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        SConfiguredTarget target = parseTarget(targets[i], carried);
        if (const auto fault = faultOf(target, i == 0)) {
            return SConfigurationFault{targets[i].offset, inQuotes(targets[i].text) + " " + *fault,
                                       textsOf(targets), std::string(targets[i].text)};
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

SReadConfigurations parseConfigurations(const CConfigurationText& text) {
    SReadConfigurations reading;
    const std::vector<SPiece> pieces = text.split(text.whole(), "&\n\r");
    reading.count = pieces.size();
    for (const SPiece& piece : pieces) {
        SConfiguration configuration;
        const std::optional<SConfigurationFault> fault = parseConfiguration(text, piece, configuration);
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

}  // namespace fi_rotate
