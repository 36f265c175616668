#include "resource/CFiUdid.h"

#include <cstddef>
#include <string_view>

#include "resource/CFiUdidException.h"

namespace {

constexpr std::string_view kDevicePrefix = "UDID##";
constexpr std::string_view kEnclosurePrefix = "UEID##";
constexpr std::string_view kSeparator = "##";

}  // namespace

void CFiUdid::parse(const std::string& text) {
    idPart1.clear();
    idPart2.clear();
    enclosure.clear();
    device.clear();
    isEnclosureId = false;

    // A device prefix wins wherever it stands, even behind an enclosure prefix.
    std::size_t prefix = text.find(kDevicePrefix);
    if (prefix == std::string::npos) {
        prefix = text.find(kEnclosurePrefix);
        if (prefix == std::string::npos) {
            throw CFiUdidException{text, CFiUdidException::kNoPrefix};
        }
        isEnclosureId = true;
    }
    std::string_view rest = std::string_view(text).substr(prefix + kDevicePrefix.size());

    std::size_t separator = rest.find(kSeparator);
    if (separator == std::string_view::npos) {
        throw CFiUdidException{text, CFiUdidException::kNoSeparatorAfterFirstPart};
    }
    idPart1 = rest.substr(0, separator);
    rest.remove_prefix(separator + kSeparator.size());

    separator = rest.find(kSeparator);
    if (separator == std::string_view::npos) {
        throw CFiUdidException{text, CFiUdidException::kNoSeparatorAfterSecondPart};
    }
    idPart2 = rest.substr(0, separator);
    rest.remove_prefix(separator + kSeparator.size());

    if (rest.empty()) {
        throw CFiUdidException{text, CFiUdidException::kNothingAfterSecondPart};
    }

    separator = rest.find(kSeparator);
    if (separator != std::string_view::npos) {
        enclosure = rest.substr(0, separator);
        device = rest.substr(separator + kSeparator.size());
    } else if (isEnclosureId) {
        enclosure = rest;
    } else {
        device = rest;
    }
}
