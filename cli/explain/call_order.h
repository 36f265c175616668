#pragma once

#include <string_view>

namespace fi_rotate {

// Follows the steps of a call, which the library always takes in the same order. Lines that were lost only
// leave steps out. A step that comes after a later one shows that lines of several calls are mixed
// (isBroken).
class CCallOrder {
public:
    void read(std::string_view text);

    [[nodiscard]] bool isBroken() const { return broken; }
    // Whether the call has come to its selection, or to the end without one.
    [[nodiscard]] bool isDecided() const { return step >= EStep::kDecision; }

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

    // kNone for a text that belongs to no step.
    [[nodiscard]] EStep stepOf(std::string_view text) const;

    EStep step = EStep::kNone;
    bool broken = false;
};

}  // namespace fi_rotate
