#include "cli/outcome/failure_words.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "cli/check/findings.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

constexpr std::string_view kRest = "; its configuration and all after it are ignored";

// The texts that a failure of the configuration quotes.
struct SFailure {
    ETraceText kind;
    std::string_view words;
};
constexpr SFailure kOfConfiguration[] = {
    {ETraceText::kNoTargets, "names no target"},
    {ETraceText::kNoDevice, "names no device; a target is ENCLOSURE##DEVICE"},
    {ETraceText::kNoEnclosure, "names no enclosure; a target is ENCLOSURE##DEVICE"},
};

constexpr ETraceText kReportedElsewhere[] = {
    ETraceText::kCannotLoad,
    ETraceText::kNoResource,
    ETraceText::kNotAvailable,
};

}  // namespace

std::string failureInWords(const std::string& traced) {
    if (std::any_of(std::begin(kReportedElsewhere), std::end(kReportedElsewhere),
                    [&](ETraceText kind) { return argumentsOf(kind, traced).has_value(); })) {
        return "";
    }
    for (const SFailure& failure : kOfConfiguration) {
        if (const auto arguments = argumentsOf(failure.kind, traced)) {
            return fmt::format("{} {}{}", inQuotes(arguments->front()), failure.words, kRest);
        }
    }
    // Only a hardened library traces it.
    if (const auto arguments = argumentsOf(ETraceText::kMalformedDocument, traced)) {
        return fmt::format("a document is read up to line {}, column {} only: {}", arguments->at(0),
                           arguments->at(1), arguments->at(2));
    }
    if (const auto arguments = argumentsOf(ETraceText::kNoConfiguration, traced)) {
        return "the configuration names no target: " + inQuotes(arguments->front());
    }
    return traced;
}

}  // namespace fi_rotate
