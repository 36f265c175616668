#pragma once

#include <cstdint>
#include <vector>

#include "resource/SFiResourceList.h"

// Parser of the resource configuration string:
//
//   configurations separated by any run of '&', line feed and carriage return;
//   targets of a configuration separated by any run of ';';
//   a target is ENCLOSURE##DEVICE, split at the first "##", or DEVICE alone, which takes the
//   enclosure of the target before it in the same configuration.
//
// The first target of a configuration needs an enclosure, every target needs a device.
class CFiResourceParser {
public:
    enum EStatus : std::int32_t {
        kParsed = 0,
        kRejected = 3,
        kNoConfiguration = 6,
    };

    // Decodes XML character references in `specification`, then appends its configurations to
    // `configurations`, which is never cleared. Returns an EStatus. When a configuration is
    // rejected the ones before it stay appended; it and those after it are not added.
    std::int32_t parse(const char* specification);

    std::vector<SFiResourceList> configurations;

private:
    std::int32_t parseConfiguration(char* configuration);
};
