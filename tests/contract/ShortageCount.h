#pragma once

#include <cstddef>

#include "tests/contract/Shortage.h"

namespace fi_test {

// Counts allocations and says which ones fail. It allocates nothing itself.
class CShortageCount {
public:
    void start(EShortage newKind, std::size_t number) {
        kind = newKind;
        failing = number;
        count = 0;
        failed = false;
        isRunning = true;
    }
    void end() { isRunning = false; }

    // Asked once for each allocation.
    bool fails() {
        if (!isRunning) {
            return false;
        }
        ++count;
        const bool isLasting = kind == EShortage::kLasting && failing != 0 && count > failing;
        if (count != failing && !isLasting) {
            return false;
        }
        failed = true;
        return true;
    }

    std::size_t allocations() const { return count; }
    bool isOn() const { return isRunning; }
    bool hasFailed() const { return failed; }

private:
    EShortage kind = EShortage::kOfOneBlock;
    std::size_t failing = 0;
    std::size_t count = 0;
    bool failed = false;
    bool isRunning = false;
};

}  // namespace fi_test
