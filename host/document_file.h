#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/CFiFileState.h"

// The state of documents' files before and after the library reads them.
namespace fi_rotate {

struct SFileProblem {
    // A value of fi_rotation_problem. `fault` says it in words.
    std::uint32_t kind = 0;
    std::string fault;
};

struct SDocumentFile {
    // The state before it was read; nothing when it is not a file.
    std::optional<CFiFileState> state;
    std::vector<SFileProblem> problems;
};

// Looks for problems of a file: whether it is a regular file, which is asked before it is opened; its size;
// NUL bytes; and whether it can be read to its end. Keeps nothing of its content. What is behind `mostBytes`
// is read only when `isReadBeyond`.
SDocumentFile inspectDocument(const std::string& file, std::uint64_t mostBytes, bool isReadBeyond);

// The state of the file of this name now; nothing when there is none.
std::optional<CFiFileState> stateOf(const std::string& file);

}  // namespace fi_rotate
