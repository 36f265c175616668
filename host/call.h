#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The inputs of one call.
namespace fi_rotate {

// An earlier backup as it is handed over.
struct SBackup {
    std::string file;
    std::int32_t flagWord = 0;
};

struct SCall {
    // Without NUL bytes: the library reads it as a C string.
    std::string configuration;
    std::vector<SBackup> backups;
};

}  // namespace fi_rotate
