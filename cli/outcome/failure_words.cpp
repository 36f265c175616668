#include "cli/outcome/failure_words.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/check/findings.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

constexpr std::string_view kRest = "; its configuration and all after it are not used";

// What is wrong with the part of a configuration that the line quotes.
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
    if (entersDamage(traced)) {
        return "a document cannot be read to its end as XML, so no more than its beginning was used; "
               "fi-rotate check shows where";
    }
    // Only a hardened library traces it, and the host library.
    if (const auto arguments = argumentsOf(ETraceText::kMalformedDocument, traced)) {
        return fmt::format("a document was read only up to line {}, column {}: {}", arguments->at(0),
                           arguments->at(1), arguments->at(2));
    }
    if (argumentsOf(ETraceText::kInvalidParameter, traced).has_value()) {
        return "the library refused the call, because one of its arguments was missing or empty";
    }
    if (const auto arguments = argumentsOf(ETraceText::kNoConfiguration, traced)) {
        return "the configuration names no target: " + inQuotes(arguments->front());
    }
    return traced;
}

std::vector<std::string> messagesInWords(const SOutcome& outcome) {
    std::vector<std::string> messages;
    for (const std::string& message : outcome.messages) {
        const bool isOfException = outcome.exception.has_value() &&
                                   outcome.exception->identifier.has_value() &&
                                   argumentsOf(ETraceText::kMalformedIdentifier, message).has_value();
        std::string words = isOfException
                                ? fmt::format("malformed identifier {}: an exception ended the call",
                                              inQuotes(*outcome.exception->identifier))
                                : failureInWords(message);
        if (!words.empty()) {
            messages.push_back(std::move(words));
        }
    }
    return messages;
}

}  // namespace fi_rotate
