#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Document.h"

namespace fi_model {

// One earlier backup as the caller names it.
struct SEntry {
    std::string name;
    std::int32_t flag = 0;
};

// One call with everything that it reads.
struct SCall {
    // The seed that made the call, so that a report can say how to make it again.
    std::uint64_t seed = 0;
    // Empty for a null pointer.
    std::optional<std::string> configuration;
    // The arrays behind the caller's pointers, which may be longer than the list size.
    std::vector<SEntry> entries;
    std::int32_t listSize = 0;
    bool hasFlags = true;
    bool hasResult = true;
    // The files that exist, by the name with which they are opened.
    std::map<std::string, SDocument> files;
};

}  // namespace fi_model
