#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// What has to be known of a resource configuration before the library reads it.
namespace fi_rotate {

// A character reference that the library decodes before it separates configurations and targets.
struct SReference {
    std::string_view text;
    char meaning = '\0';
};

// The reference that `text` begins with; null when it begins with none.
const SReference* referenceAt(std::string_view text);

// How many bytes the name of an enclosure may have in the host library and in `fi-rotate check`. Each target
// without an enclosure of its own gets a copy of the one before it, so without this limit a configuration
// could take memory and time that grow with the square of its bytes.
constexpr std::size_t kLongestEnclosure = 256;

struct SLongEnclosure {
    // Where it begins, in bytes from the start of the configuration.
    std::size_t offset = 0;
    // Its bytes after decoding.
    std::size_t length = 0;
};

// The first enclosure in `configuration` that is longer than kLongestEnclosure.
std::optional<SLongEnclosure> findLongEnclosure(std::string_view configuration);

}  // namespace fi_rotate
