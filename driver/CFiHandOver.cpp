#include "driver/CFiHandOver.h"

#include <algorithm>

CFiHandOver::CFiHandOver(char** resultString, std::int32_t* fiidFlags, std::size_t count)
    : target(resultString),
      flags(fiidFlags),
      formerTarget(*resultString),
      formerFlags(fiidFlags, fiidFlags + count) {}

CFiHandOver::~CFiHandOver() {
    if (isKept) {
        return;
    }
    if (isSelectionGiven) {
        const CMallocedText given(*target);
        *target = formerTarget;
    }
    std::copy(formerFlags.begin(), formerFlags.end(), flags);
}

void CFiHandOver::give(CMallocedText selection) {
    *target = selection.release();
    isSelectionGiven = true;
}

void CFiHandOver::give(const std::vector<std::int32_t>& finalFlags) {
    std::copy(finalFlags.begin(), finalFlags.end(), flags);
}
