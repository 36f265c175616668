#include "resource/EFiResourceState.h"

const char* resourceStateName(std::int32_t state) {
    switch (state) {
        case kResourceAvailable:
            return "Available";
        case kResourceUsed:
            return "Used";
        case kResourceInvalid:
            return "Invalid";
        default:
            return "Unknown";
    }
}
