#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace fi_rotate {

// The name of the encoding when `bytes` are a document in one whose characters are wider than a byte.
std::optional<std::string_view> wideEncoding(std::string_view bytes);

struct SEncodingMismatch {
    std::size_t offset = 0;
    std::string text;
};

// How the encoding that a document declares disagrees with its bytes.
std::optional<SEncodingMismatch> encodingMismatch(std::string_view document);

}  // namespace fi_rotate
