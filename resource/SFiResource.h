#pragma once

#include <cstdint>
#include <string>

#include "resource/EFiResourceState.h"

// One further target of a configuration: a candidate for the next snapshot.
struct SFiResource {
    std::string device;
    // May be empty: a further target may be written without an enclosure part.
    std::string enclosure;
    std::int32_t state = kResourceAvailable;
};
