#include "tests/model/Answer.h"

#include <algorithm>
#include <cstdio>

namespace fi_model {
namespace {

std::string pairOf(const std::string& subject, const std::string& expected, const std::string& actual) {
    return subject + "\n  model:   " + expected + "\n  library: " + actual + "\n";
}

std::string describe(const fi_test::Trace& trace, std::size_t index) {
    if (index >= trace.size()) {
        return "(no line)";
    }
    return std::to_string(trace[index].level) + " " + asLiteral(trace[index].text);
}

std::string describe(const std::optional<SMalformed>& malformed) {
    if (!malformed) {
        return "(no exception)";
    }
    return "code " + std::to_string(malformed->code) + " " + asLiteral(malformed->identifier);
}

std::string describe(const std::optional<std::string>& selection) {
    return selection ? asLiteral(*selection) : "(unchanged)";
}

std::string describe(const std::vector<std::int32_t>& flags) {
    std::string text = "{";
    for (const std::int32_t flag : flags) {
        text += " " + std::to_string(flag);
    }
    return text + " }";
}

std::string traceDifference(const SAnswer& expected, const SAnswer& actual) {
    const std::size_t lines = std::max(expected.trace.size(), actual.trace.size());
    for (std::size_t index = 0; index < lines; ++index) {
        const std::string ours = describe(expected.trace, index);
        const std::string theirs = describe(actual.trace, index);
        if (ours != theirs) {
            const std::string before = index == 0 ? "" : describe(expected.trace, index - 1);
            return pairOf("trace line " + std::to_string(index) + ", after " + before, ours, theirs);
        }
    }
    return "";
}

}  // namespace

std::string asLiteral(const std::string& text) {
    std::string literal = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            literal += '\\';
            literal += character;
        } else if (character == '\n') {
            literal += "\\n";
        } else if (byte < 0x20 || byte > 0x7e) {
            // Three octal digits end by themselves; a hexadecimal escape would swallow a digit.
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\%03o", static_cast<unsigned>(byte));
            literal += escape;
        } else {
            literal += character;
        }
    }
    return literal + "\"";
}

std::string firstDifference(const SAnswer& expected, const SAnswer& actual) {
    if (expected.trace != actual.trace) {
        return traceDifference(expected, actual);
    }
    if (describe(expected.malformed) != describe(actual.malformed)) {
        return pairOf("exception", describe(expected.malformed), describe(actual.malformed));
    }
    if (!expected.malformed && expected.status != actual.status) {
        return pairOf("status", std::to_string(expected.status), std::to_string(actual.status));
    }
    if (expected.selection != actual.selection) {
        return pairOf("selection", describe(expected.selection), describe(actual.selection));
    }
    if (expected.flags != actual.flags) {
        return pairOf("flags", describe(expected.flags), describe(actual.flags));
    }
    if (expected.standardOutput != actual.standardOutput) {
        return pairOf("standard output", asLiteral(expected.standardOutput),
                      asLiteral(actual.standardOutput));
    }
    return "";
}

}  // namespace fi_model
