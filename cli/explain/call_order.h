#pragma once

#include <string_view>

namespace fi_rotate {

// Follows the steps of a call, which the library takes in one order. Lines that were lost leave steps out,
// but none comes after a later one: then lines of several calls are mixed.
class CCallOrder {
public:
    void read(std::string_view text);

    [[nodiscard]] bool isBroken() const { return broken; }

private:
    enum class EStep {
        kNone,
        kConfiguration,
        kFlagWords,
        kLoading,
        kFirstPrint,
        kChecks,
        kClaims,
        kSkips,
        kDecision,
        kSecondPrint,
        kFinalStates,
    };

    // Nothing that has a step of its own is kNone.
    [[nodiscard]] EStep stepOf(std::string_view text) const;

    EStep step = EStep::kNone;
    bool broken = false;
};

}  // namespace fi_rotate
