#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "common/CFiFileState.h"

// The files of documents, looked at before the library reads them and after.
namespace fi_rotate {

struct SDocumentFile {
    // Before it was read; nothing when it is no file.
    std::optional<CFiFileState> state;
    // A value of fi_rotation_problem, and in words what is wrong; 0 when it could be read whole.
    std::uint32_t problem = 0;
    std::string fault;
};

// Reads a file to its end, without keeping it.
SDocumentFile inspectDocument(const std::string& file, std::uint64_t mostBytes);

// The present state of what has this name; nothing when that cannot be told.
std::optional<CFiFileState> stateOf(const std::string& file);

}  // namespace fi_rotate
