#include "cli/explain/call_order.h"

#include "host/trace_text.h"

namespace fi_rotate {

void CCallOrder::read(std::string_view text) {
    const EStep next = stepOf(text);
    if (next == EStep::kNone) {
        return;
    }
    // These have one line of their own.
    const bool isOneLine =
        next == EStep::kFirstPrint || next == EStep::kDecision || next == EStep::kSecondPrint;
    broken = broken || next < step || (next == step && isOneLine);
    step = next;
}

CCallOrder::EStep CCallOrder::stepOf(std::string_view text) const {
    const auto is = [text](ETraceText kind) { return argumentsOf(kind, text).has_value(); };
    if (isOfParser(text)) {
        return EStep::kConfiguration;
    }
    if (is(ETraceText::kFlagWord) || is(ETraceText::kFirstBackup)) {
        return EStep::kFlagWords;
    }
    if (is(ETraceText::kCheckPassed) || is(ETraceText::kCheckFailed)) {
        return EStep::kChecks;
    }
    if (is(ETraceText::kSkipped)) {
        return EStep::kSkips;
    }
    if (is(ETraceText::kSelection) || is(ETraceText::kNotAvailable)) {
        return EStep::kDecision;
    }
    if (is(ETraceText::kResourceSet)) {
        return step < EStep::kFirstPrint ? EStep::kFirstPrint : EStep::kSecondPrint;
    }
    // The name of a document may end like a state.
    if (is(ETraceText::kFinalState) && step > EStep::kLoading) {
        return EStep::kFinalStates;
    }
    if (is(ETraceText::kParsed)) {
        return EStep::kLoading;
    }
    // Its form is the loosest of all.
    return is(ETraceText::kClaimed) || is(ETraceText::kNotClaimed) ? EStep::kClaims : EStep::kNone;
}

}  // namespace fi_rotate
