#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The inputs of one call.
namespace fi_rotate {

// An earlier backup, as the library is given it.
struct SBackup {
    std::string file;
    std::int32_t flagWord = 0;
};

struct SCall {
    // Must not hold a NUL byte: the library reads it as a C string.
    std::string configuration;
    std::vector<SBackup> backups;
};

}  // namespace fi_rotate
