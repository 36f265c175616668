#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// What stands before the first element of an XML document.

// The encoding in the XML declaration.
std::optional<std::string_view> declaredEncoding(std::string_view document);

// Whether the XML declaration names no second encoding, which a reader might find where this one does not.
bool hasAtMostOneEncoding(std::string_view document);

// Where the DOCTYPE begins.
std::optional<std::size_t> doctypeIn(std::string_view document);

// Whether the DOCTYPE that `text` begins with has ended after `most` bytes.
bool endsWithin(std::size_t most, std::string_view text);
