#pragma once

#include <string>

#include "tests/model/Journal.h"

namespace fi_model {

// The two parts of an identifier that are compared with targets.
struct Identifier {
    std::string enclosure;
    std::string device;
};

// Throws Malformed when the text is no identifier.
Identifier parseIdentifier(const std::string& text, Journal& journal);

}  // namespace fi_model
