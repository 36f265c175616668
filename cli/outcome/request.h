#pragma once

#include <string>
#include <string_view>

#include "host/call.h"

// A whole call as one JSON document, so that it can be repeated elsewhere.
namespace fi_rotate {

// Reads a request. Throws std::invalid_argument, which says what is wrong and where, when `text` is not one.
SCall parseRequest(const std::string& text);

// The request for `call`, with a line end. Throws std::invalid_argument when a text of the call is not UTF-8,
// because JSON cannot contain it unchanged.
std::string toRequest(const SCall& call);

// Whether `text` is a request.
bool isRequest(std::string_view text);

}  // namespace fi_rotate
