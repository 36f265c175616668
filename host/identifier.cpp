#include "host/identifier.h"

#include <cstddef>

#include <fi_rotation/CFiUdidException.h>

namespace fi_rotate {
namespace {

constexpr std::string_view kDevicePrefix = "UDID##";
constexpr std::string_view kEnclosurePrefix = "UEID##";
constexpr std::string_view kSeparator = "##";

// The text behind the second separator after the prefix, or why there is none.
struct SThirdPart {
    std::string_view text;
    bool isDevice = false;
    std::optional<std::int32_t> fault;
};

SThirdPart thirdPartOf(std::string_view text) {
    const std::size_t devicePrefix = text.find(kDevicePrefix);
    const bool isDevice = devicePrefix != std::string_view::npos;
    const std::size_t prefix = isDevice ? devicePrefix : text.find(kEnclosurePrefix);
    if (prefix == std::string_view::npos) {
        return {{}, false, CFiUdidException::kNoPrefix};
    }
    std::string_view rest = text.substr(prefix + kDevicePrefix.size());
    for (const std::int32_t fault :
         {CFiUdidException::kNoSeparatorAfterFirstPart, CFiUdidException::kNoSeparatorAfterSecondPart}) {
        const std::size_t end = rest.find(kSeparator);
        if (end == std::string_view::npos) {
            return {{}, false, fault};
        }
        rest.remove_prefix(end + kSeparator.size());
    }
    if (rest.empty()) {
        return {{}, false, CFiUdidException::kNothingAfterSecondPart};
    }
    return {rest, isDevice, {}};
}

}  // namespace

SIdentifier parseIdentifier(std::string_view text) {
    const auto [rest, isDevice, fault] = thirdPartOf(text);
    if (fault.has_value()) {
        return {"", "", fault};
    }
    const std::size_t end = rest.find(kSeparator);
    if (end == std::string_view::npos) {
        // A third part alone is the device of a device identifier, and the enclosure of an enclosure
        // identifier.
        return isDevice ? SIdentifier{"", std::string(rest), std::nullopt}
                        : SIdentifier{std::string(rest), "", std::nullopt};
    }
    return {std::string(rest.substr(0, end)), std::string(rest.substr(end + kSeparator.size())),
            std::nullopt};
}

std::string targetOf(std::string_view identifier) {
    const std::string_view rest = thirdPartOf(identifier).text;
    // An enclosure and a device stand there in the form of a target's name.
    return rest.find(kSeparator) != std::string_view::npos ? std::string(rest)
                                                           : parseIdentifier(identifier).name();
}

std::string_view identifierFault(std::int32_t code) {
    switch (code) {
        case CFiUdidException::kNothingAfterSecondPart:
            return "nothing follows the second ## after its prefix";
        case CFiUdidException::kNoPrefix:
            return "it holds neither UDID## nor UEID##";
        case CFiUdidException::kNoSeparatorAfterFirstPart:
            return "no ## follows its prefix";
        case CFiUdidException::kNoSeparatorAfterSecondPart:
            return "only one ## follows its prefix";
        default:
            return "it is malformed";
    }
}

}  // namespace fi_rotate
