#pragma once

#include <cstdint>

// What is known of a target during one call. Records hold it as a plain 32-bit integer, so that a
// value outside the enumeration is still a value that can be printed.
enum EFiResourceState : std::int32_t {
    kResourceAvailable = 0,
    kResourceUsed = 1,
    // Never set, but printed when a record holds it.
    kResourceInvalid = 2,
};

// The name under which a state is printed; "Unknown" for a value outside the enumeration.
const char* resourceStateName(std::int32_t state);
