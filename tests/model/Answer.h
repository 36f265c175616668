#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/TraceRecorder.h"

namespace fi_model {

struct SMalformed {
    std::string identifier;
    std::int32_t code = 0;
};

// All that a caller and a host can see of one call. The library's answer and the model's have the
// same shape, so that they can be compared field by field.
struct SAnswer {
    fi_test::Trace trace;
    std::string standardOutput;
    // Set when the call ended with an exception; the status then means nothing.
    std::optional<SMalformed> malformed;
    std::int32_t status = 0;
    // Empty when the caller's pointer was left as it was.
    std::optional<std::string> selection;
    // The whole array behind the caller's flag pointer, also beyond the list size.
    std::vector<std::int32_t> flags;
};

// Text as a C string literal, so that it can be pasted into a test.
std::string asLiteral(const std::string& text);

// What is different first, or an empty text. The trace comes first because it shows the earliest
// point at which the two went apart.
std::string firstDifference(const SAnswer& expected, const SAnswer& actual);

}  // namespace fi_model
