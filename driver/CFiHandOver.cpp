#include "driver/CFiHandOver.h"

#include <algorithm>

CFiHandOver::CFiHandOver(char** resultString, std::int32_t* fiidFlags, std::size_t count)
    : result(resultString),
      flags(fiidFlags),
      formerResult(*resultString),
      formerFlags(fiidFlags, fiidFlags + count) {}

CFiHandOver::~CFiHandOver() {
    if (isCommitted) {
        return;
    }
    if (isSelectionWritten) {
        const CMallocedText written(*result);
        *result = formerResult;
    }
    std::copy(formerFlags.begin(), formerFlags.end(), flags);
}

void CFiHandOver::writeSelection(CMallocedText selection) {
    *result = selection.release();
    isSelectionWritten = true;
}

void CFiHandOver::writeFlagWords(const std::vector<std::int32_t>& finalFlags) {
    std::copy(finalFlags.begin(), finalFlags.end(), flags);
}
