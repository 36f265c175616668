#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "driver/selection.h"

// Writes the caller's outputs, and takes them back at the end of the scope unless they are kept: a call
// that an exception leaves after the hand-over must leave the outputs as they were.
class CFiHandOver {
public:
    // `resultString` and the `count` flag words at `fiidFlags` are the caller's.
    CFiHandOver(char** resultString, std::int32_t* fiidFlags, std::size_t count);
    ~CFiHandOver();
    CFiHandOver(const CFiHandOver&) = delete;
    CFiHandOver& operator=(const CFiHandOver&) = delete;

    void give(CMallocedText selection);
    // `finalFlags` holds `count` flag words.
    void give(const std::vector<std::int32_t>& finalFlags);
    void keep() { isKept = true; }

private:
    char** target;
    std::int32_t* flags;
    char* formerTarget;
    std::vector<std::int32_t> formerFlags;
    bool isSelectionGiven = false;
    bool isKept = false;
};
