#include "cli/check/unread.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "cli/base/text.h"
#include "cli/check/configuration.h"

namespace fi_rotate {
namespace {

template <typename Map>
std::optional<EHazard> findIn(const Map& causes, const typename Map::key_type& key) {
    const auto found = causes.find(key);
    return found == causes.end() ? std::nullopt : std::optional<EHazard>(found->second);
}

constexpr std::string_view kSeparator = "##";

std::string_view deviceOf(std::string_view target) {
    return target.substr(target.find(kSeparator) + kSeparator.size());
}

// Whether the malformed `text` was probably meant to be `first`: it ends in the device of `first` (lun1,
// encA#lun1), or is only its enclosure (encA##).
bool canMean(std::string_view text, const std::string& first) {
    const std::string_view device = deviceOf(first);
    if (startsWith(first, text) && text.size() == first.size() - device.size()) {
        return true;
    }
    if (text.size() < device.size() || text.substr(text.size() - device.size()) != device) {
        return false;
    }
    const std::string_view before = text.substr(0, text.size() - device.size());
    return before.empty() || std::isalnum(static_cast<unsigned char>(before.back())) == 0;
}

// Whether one of `targets` names `further`, whose enclosure may stand before it.
bool holds(const std::vector<std::string>& targets, const std::string& further) {
    return std::any_of(targets.begin(), targets.end(), [&further](const std::string& target) {
        return target == further || target == deviceOf(further);
    });
}

}  // namespace

void CUnread::setCauseOfAll(EHazard cause) {
    all = all.value_or(cause);
}

void CUnread::addConfiguration(const SConfiguration& meant, EHazard cause) {
    const std::string first = meant.first.name();
    firsts.emplace(first, cause);
    for (const SConfiguredTarget& target : meant.further) {
        furthers.emplace(std::pair(first, target.name()), cause);
    }
}

void CUnread::addFurtherTargetsOf(const std::string& first, EHazard cause) {
    withoutTargets.emplace(first, cause);
}

void CUnread::addMalformed(const std::string& precedingFirst, const std::vector<std::string>& targets,
                           EHazard cause) {
    malformed.push_back({precedingFirst, targets, cause});
}

std::optional<EHazard> CUnread::causeOfFirst(const std::string& first, const std::string& further) const {
    if (all.has_value()) {
        return all;
    }
    if (const auto cause = findIn(firsts, first)) {
        return cause;
    }
    const auto found = std::find_if(malformed.begin(), malformed.end(), [&](const SMalformed& row) {
        return (!row.targets.empty() && canMean(row.targets.front(), first)) || holds(row.targets, further);
    });
    return found == malformed.end() ? std::nullopt : std::optional<EHazard>(found->cause);
}

std::optional<EHazard> CUnread::causeOfFurther(const std::string& first, const std::string& further) const {
    if (const auto cause = findIn(furthers, {first, further})) {
        return cause;
    }
    if (const auto cause = findIn(withoutTargets, first)) {
        return cause;
    }
    const auto found = std::find_if(malformed.begin(), malformed.end(), [&](const SMalformed& row) {
        return row.precedingFirst == first && holds(row.targets, further);
    });
    return found == malformed.end() ? std::nullopt : std::optional<EHazard>(found->cause);
}

}  // namespace fi_rotate
