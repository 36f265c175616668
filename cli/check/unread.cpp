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

// Whether the malformed `text` was probably meant to be `first`: it ends in the device of `first` (lun1,
// encA#lun1), or is only its enclosure (encA##).
bool canMean(std::string_view text, const std::string& first) {
    constexpr std::string_view kSeparator = "##";
    const std::size_t separator = first.find(kSeparator);
    const std::string_view device = std::string_view(first).substr(separator + kSeparator.size());
    if (startsWith(first, text) && text.size() == separator + kSeparator.size()) {
        return true;
    }
    if (text.size() < device.size() || text.substr(text.size() - device.size()) != device) {
        return false;
    }
    const std::string_view before = text.substr(0, text.size() - device.size());
    return before.empty() || std::isalnum(static_cast<unsigned char>(before.back())) == 0;
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

void CUnread::addMalformed(const std::string& text, EHazard cause) {
    malformed.emplace_back(text, cause);
}

std::optional<EHazard> CUnread::causeOf(const std::string& first) const {
    if (all.has_value()) {
        return all;
    }
    if (const auto cause = findIn(firsts, first)) {
        return cause;
    }
    const auto found = std::find_if(malformed.begin(), malformed.end(),
                                    [&first](const auto& row) { return canMean(row.first, first); });
    return found == malformed.end() ? std::nullopt : std::optional<EHazard>(found->second);
}

std::optional<EHazard> CUnread::causeOf(const std::string& first, const std::string& further) const {
    const auto cause = findIn(furthers, {first, further});
    return cause.has_value() ? cause : findIn(withoutTargets, first);
}

}  // namespace fi_rotate
