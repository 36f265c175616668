#pragma once

#include <string>
#include <vector>

#include "tests/model/Document.h"

namespace fi_model {

// What an XML reader reports of a document, in order.
struct Event {
    enum class Kind { kStart, kEnd, kCharacters, kWarning, kFatalError };
    Kind kind = Kind::kCharacters;
    std::string text;
};

// The events of a document: one piece of characters for each run of text between markup. An
// ill-formed document ends with its fatal error.
std::vector<Event> readEvents(const Document& document);

}  // namespace fi_model
