#include "cli/explain/repeated_print.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "host/trace_text.h"

namespace fi_rotate {
namespace {

// The names in a printed target, without its state, which changes.
std::optional<std::string_view> targetIn(std::string_view text) {
    for (const ETraceText kind : {ETraceText::kFirstTarget, ETraceText::kFurtherTarget}) {
        const auto arguments = argumentsOf(kind, text);
        if (arguments.has_value()) {
            return text.substr(0, text.rfind(arguments->back()));
        }
    }
    return std::nullopt;
}

}  // namespace

void CRepeatedPrint::read(std::string_view text, bool isDecided) {
    const auto line = isOfTree(text) ? std::optional(text) : targetIn(text);
    if (!line.has_value()) {
        begin(text, isDecided);
    } else if (lines != nullptr) {
        const std::size_t hash = std::hash<std::string_view>()(*line);
        if (next.has_value()) {
            compare(hash);
        } else {
            lines->push_back(hash);
        }
    }
}

// Goes on to the list that this line stands before, if it stands before one.
void CRepeatedPrint::begin(std::string_view text, bool isDecided) {
    lines = nullptr;
    next = isDecided ? std::optional<std::size_t>(0) : std::nullopt;
    const bool isSet = text == formatOf(ETraceText::kResourceSet);
    const auto arguments = argumentsOf(isDecided ? ETraceText::kFinalState : ETraceText::kParsed, text);
    if (!isSet && !arguments.has_value()) {
        return;
    }
    const std::string name(isSet ? std::string_view() : arguments->front());
    if (!isDecided) {
        lines = &first[name];
        return;
    }
    const auto found = first.find(name);
    lines = found == first.end() ? nullptr : &found->second;
}

// Lines that only the second print lost are passed over.
void CRepeatedPrint::compare(std::size_t line) {
    const auto found = std::find(lines->begin() + static_cast<std::ptrdiff_t>(*next), lines->end(), line);
    if (found == lines->end()) {
        isIncomplete = true;
        lines = nullptr;
        return;
    }
    next = static_cast<std::size_t>(std::distance(lines->begin(), found)) + 1;
}

}  // namespace fi_rotate
