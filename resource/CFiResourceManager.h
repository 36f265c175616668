#pragma once

#include <vector>

#include "resource/SFiResourceList.h"

// Holds the targets of one call.
class CFiResourceManager {
public:
    // Writes the whole set to the trace.
    void print() const;

    // In configuration order.
    std::vector<SFiResourceList> resourceSet;
};
