#pragma once

#include <string>
#include <vector>

#include "tests/model/Document.h"

namespace fi_model {

// What an XML reader reports of a document, in order.
struct SEvent {
    enum class EKind { kStart, kEnd, kCharacters, kWarning, kFatalError };
    EKind kind = EKind::kCharacters;
    std::string text;
};

// The events of a document: one piece of characters for each run of text between markup. An
// ill-formed document ends with its fatal error.
std::vector<SEvent> readEvents(const SDocument& document);

}  // namespace fi_model
