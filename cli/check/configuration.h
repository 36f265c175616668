#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/check/findings.h"
#include "cli/check/unread.h"

namespace fi_rotate {

struct SConfiguredTarget {
    std::string enclosure;
    std::string device;
    // In the text as it was given, before references are decoded.
    std::size_t offset = 0;
    // The enclosure is that of the target before.
    bool isEnclosureCarried = false;

    // ENCLOSURE##DEVICE. An enclosure holds no "##" and does not end in '#', so the name tells both.
    [[nodiscard]] std::string name() const { return enclosure + "##" + device; }
};

struct SConfiguration {
    SConfiguredTarget first;
    std::vector<SConfiguredTarget> further;
};

struct SConfigurations {
    // Those that the library uses: all of them, or those before the first malformed one.
    std::vector<SConfiguration> used;
    CUnread unread;
};

// What is wrong with `text` is added to `findings`.
SConfigurations checkConfiguration(const std::string& text, CFindings& findings);

}  // namespace fi_rotate
