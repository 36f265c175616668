#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// What stands before the first element of an XML document.

// The encoding that the XML declaration names.
std::optional<std::string_view> declaredEncoding(std::string_view document);

// Whether the XML declaration names one encoding at most. If it named two, the XML library might take another
// one than declaredEncoding.
bool hasAtMostOneEncoding(std::string_view document);

// The offset of the DOCTYPE.
std::optional<std::size_t> doctypeIn(std::string_view document);

// Whether the DOCTYPE at the start of `text` ends within `most` bytes.
bool doctypeEndsWithin(std::string_view text, std::size_t most);
