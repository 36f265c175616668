#pragma once

#include <string>

#include "tests/model/Journal.h"

namespace fi_model {

// The two parts of an identifier that are compared with targets.
struct SIdentifier {
    std::string enclosure;
    std::string device;
};

// Throws SMalformed when the text is no identifier.
SIdentifier parseIdentifier(const std::string& text, SJournal& journal);

}  // namespace fi_model
