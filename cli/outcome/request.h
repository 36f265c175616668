#pragma once

#include <string>
#include <string_view>

#include "host/call.h"

// A whole call as one JSON document, so that it can be made again elsewhere.
namespace fi_rotate {

// Throws std::invalid_argument, saying what is wrong and where, when `text` is no such document.
SCall parseRequest(const std::string& text);

// With a line end. Throws std::invalid_argument when a text of the call is not UTF-8, which JSON cannot carry
// unchanged.
std::string toRequest(const SCall& call);

// Whether a file with this text is such a document.
bool isRequest(std::string_view text);

}  // namespace fi_rotate
