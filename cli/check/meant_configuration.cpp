#include "cli/check/meant_configuration.h"

#include <algorithm>
#include <string>
#include <utility>

#include "cli/base/text.h"
#include "cli/check/nearest.h"

namespace fi_rotate {
namespace {

std::string nameWithoutMark(const std::string& name) {
    return startsWith(name, kByteOrderMark) ? name.substr(kByteOrderMark.size()) : name;
}

std::string nameWithoutBlanks(const std::string& name) {
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

// Where the first blank within `text` from `begin` on is; npos when blanks are only at its ends.
std::size_t innerBlank(const std::string& text, std::size_t begin) {
    const std::size_t name = text.find_first_not_of(kBlanks, begin);
    const std::size_t blank = text.find_first_of(kBlanks, name);
    return text.find_first_not_of(kBlanks, blank) == std::string::npos ? std::string::npos : blank;
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

}  // namespace

SConfiguration withoutMark(const SConfiguration& configuration) {
    return changed(configuration, nameWithoutMark);
}

SConfiguration withoutCommas(const SConfiguration& configuration) {
    std::string text = writtenAs(configuration.first);
    for (const SConfiguredTarget& target : configuration.further) {
        text += ';' + writtenAs(target);
    }
    std::replace(text.begin(), text.end(), ',', ';');
    const CConfigurationText separated(text);
    SConfiguration meant;
    parseConfiguration(separated, separated.whole(), meant);
    return changed(std::move(meant), nameWithoutBlanks);
}

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
    SReadConfigurations meant = parseConfigurations(CConfigurationText(text));
    std::vector<SConfiguration> configurations;
    for (std::vector<SConfiguration>* const group : {&meant.used, &meant.lost}) {
        for (SConfiguration& each : *group) {
            configurations.push_back(changed(std::move(each), nameWithoutBlanks));
        }
    }
    return configurations;
}

}  // namespace fi_rotate
