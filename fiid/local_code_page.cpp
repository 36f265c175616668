#include "fiid/local_code_page.h"

#include <cstddef>
#include <cstdint>
#include <memory>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

using xercesc::XMLPlatformUtils;
using xercesc::XMLString;

namespace {

struct STranscodedRelease {
    void operator()(char* buffer) const { XMLString::release(&buffer, XMLPlatformUtils::fgMemoryManager); }
};

bool transcode(const XMLCh* text, std::string& result) {
    const std::unique_ptr<char, STranscodedRelease> buffer(
        XMLString::transcode(text, XMLPlatformUtils::fgMemoryManager));
    if (buffer == nullptr) {
        return false;  // GCOVR_EXCL_LINE: the converter of this version always gives a buffer.
    }
    result = buffer.get();
    return true;
}

// Compares once for both ends of the range, to save time: this is asked of every character of a document.
bool isAsciiButNul(XMLCh unit) {
    return static_cast<std::uint16_t>(unit - 1) < 0x7F;
}

}  // namespace

bool toLocalCodePage(const XMLCh* text, std::string& result) {
    // Long enough for identifiers and time stamps. Longer texts are rare, so they may take the slower way
    // through the transcoder.
    char ascii[256];
    std::size_t length = 0;
    while (length < sizeof ascii && isAsciiButNul(text[length])) {
        ascii[length] = static_cast<char>(text[length]);
        ++length;
    }
    if (text[length] != 0) {
        return transcode(text, result);
    }
    result.assign(ascii, length);
    return true;
}
