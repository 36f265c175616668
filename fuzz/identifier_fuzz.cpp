// The input is an identifier or not. If it is one, the text ends with its parts, joined again; if not, the
// exception holds the text and a known reason. It does not matter what the object held before.

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/require.h"
#include "resource/CFiUdid.h"
#include "resource/CFiUdidException.h"

namespace {

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void requirePartsOf(const std::string& text, const CFiUdid& udid) {
    const std::string prefix = udid.isEnclosureId ? "UEID##" : "UDID##";
    const std::string start = prefix + udid.idPart1 + "##" + udid.idPart2 + "##";
    const bool isWhole = endsWith(text, start + udid.enclosure + "##" + udid.device);
    const bool isDeviceAlone = udid.enclosure.empty() && endsWith(text, start + udid.device);
    const bool isEnclosureAlone =
        udid.isEnclosureId && udid.device.empty() && endsWith(text, start + udid.enclosure);
    require(isWhole || isDeviceAlone || isEnclosureAlone, "the parts are those of the text");
    require(udid.idPart1.find("##") == std::string::npos, "a part holds no separator");
    require(udid.idPart2.find("##") == std::string::npos, "a part holds no separator");
    require(udid.enclosure.find("##") == std::string::npos, "an enclosure holds no separator");
    require(!udid.isEnclosureId || text.find("UDID##") == std::string::npos, "a device prefix comes first");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CFiUdid udid;
    try {
        udid.parse(text);
        requirePartsOf(text, udid);
    } catch (const CFiUdidException& malformed) {
        require(malformed.identifier == text, "the exception says which text");
        require(malformed.code >= 1 && malformed.code <= 4, "the reason exists");
    }

    CFiUdid used;
    used.parse("UEID##a##b##c##d");
    try {
        used.parse(text);
        require(used.device == udid.device && used.enclosure == udid.enclosure &&
                    used.idPart1 == udid.idPart1 && used.idPart2 == udid.idPart2 &&
                    used.isEnclosureId == udid.isEnclosureId,
                "what was held before makes no difference");
    } catch (const CFiUdidException&) {
        // Once is enough to look at it.
    }
    return 0;
}
