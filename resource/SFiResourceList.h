#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "resource/EFiResourceState.h"
#include "resource/SFiResource.h"

// One configuration: its first target, which the objid of an earlier backup names, and the further
// targets, one of which its altobjid names.
struct SFiResourceList {
    std::string device;
    std::string enclosure;
    // Set to Used when one of `resources` is claimed; a release does not set it back.
    std::int32_t state = kResourceAvailable;
    // In the order of the configuration string; may be empty.
    std::vector<SFiResource> resources;
};
