#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "driver/selection.h"

// Writes the caller's outputs, and takes them back at the end of the scope unless they are committed: a call
// that an exception leaves after the hand-over must leave the outputs as they were.
class CFiHandOver {
public:
    // `resultString` and the `count` flag words at `fiidFlags` are the caller's.
    CFiHandOver(char** resultString, std::int32_t* fiidFlags, std::size_t count);
    ~CFiHandOver();
    CFiHandOver(const CFiHandOver&) = delete;
    CFiHandOver& operator=(const CFiHandOver&) = delete;

    void writeSelection(CMallocedText selection);
    // `finalFlags` holds `count` flag words.
    void writeFlagWords(const std::vector<std::int32_t>& finalFlags);
    void commit() { isCommitted = true; }

private:
    char** result;
    std::int32_t* flags;
    char* formerResult;
    std::vector<std::int32_t> formerFlags;
    bool isSelectionWritten = false;
    bool isCommitted = false;
};
