#include "resource/CFiResourceParser.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

#include "common/CCmnStringTool.h"
#include "common/mofi_tracelog.h"

namespace {

constexpr const char* kConfigurationSeparators = "&\n\r";
constexpr const char* kTargetSeparators = ";";
constexpr const char* kPartSeparator = "##";

// Ends every field of `text` with a NUL in place and returns where the fields start.
std::vector<char*> splitInPlace(char* text, const char* separators) {
    std::vector<char*> fields;
    char* rest = nullptr;
    for (char* field = strtok_r(text, separators, &rest); field != nullptr;
         field = strtok_r(nullptr, separators, &rest)) {
        fields.push_back(field);
    }
    return fields;
}

SFiResource parseTarget(const std::string& target, const std::string& carriedEnclosure) {
    const std::size_t separator = target.find(kPartSeparator);
    if (separator == std::string::npos) {
        return {target, carriedEnclosure};
    }
    return {target.substr(separator + std::strlen(kPartSeparator)), target.substr(0, separator)};
}

}  // namespace

std::int32_t CFiResourceParser::parse(const char* specification) {
    if (specification == nullptr) {
        mofi_tracelog(kTraceFailure, "CFiResourceParser::parse : Resource specification is null.");
        return kRejected;
    }

    // Decoding comes before splitting: an encoded "&amp;" separates configurations like a bare '&'.
    std::string text = CCmnStringTool::convertFromXmlSpecialCharacters(specification);
    const std::vector<char*> fields = splitInPlace(text.data(), kConfigurationSeparators);
    if (fields.empty()) {
        mofi_tracelog(kTraceFailure, "CFiResourceParser::parse : Invalid resource specification [%s]",
                      text.c_str());
        return kNoConfiguration;
    }

    // The split wrote a NUL byte behind the first configuration, so the line ends there.
    mofi_tracelog(kTraceProgress, "CFiResourceParser::parse : Resource specification [%s]", text.c_str());

    for (char* field : fields) {
        const std::int32_t status = parseConfiguration(field);
        if (status != kParsed) {
            return status;
        }
    }
    return kParsed;
}

std::int32_t CFiResourceParser::parseConfiguration(char* configuration) {
    const std::vector<char*> targets = splitInPlace(configuration, kTargetSeparators);
    if (targets.empty()) {
        mofi_tracelog(kTraceFailure,
                      "CFiResourceParser::parse : resource configuration \"%s\" has no targets specified.",
                      configuration);
        return kRejected;
    }

    SFiResourceList list;
    list.resources.reserve(targets.size() - 1);
    std::string carriedEnclosure;
    for (const char* text : targets) {
        SFiResource target = parseTarget(text, carriedEnclosure);
        mofi_tracelog(kTraceProgress, "CFiResourceParser::parse : [%s][%s]", target.enclosure.c_str(),
                      target.device.c_str());
        if (target.device.empty()) {
            mofi_tracelog(kTraceFailure,
                          "CFiResourceParser::parse : resource configuration \"%s\" has no device "
                          "data specified.",
                          text);
            return kRejected;
        }

        carriedEnclosure = target.enclosure;
        const bool isFirst = text == targets.front();
        if (!isFirst) {
            list.resources.push_back(std::move(target));
            continue;
        }
        if (target.enclosure.empty()) {
            mofi_tracelog(kTraceFailure,
                          "CFiResourceParser::parse : resource configuration \"%s\" has no "
                          "enclosure data specified.",
                          text);
            return kRejected;
        }
        list.device = std::move(target.device);
        list.enclosure = std::move(target.enclosure);
    }
    configurations.push_back(std::move(list));
    return kParsed;
}
