#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fi_rotate {

// What an identifier of a document names, or why it is malformed.
struct SIdentifier {
    std::string enclosure;
    std::string device;
    // The code of the exception that the library throws for it.
    std::optional<std::int32_t> fault;

    // ENCLOSURE##DEVICE, as targets are called.
    [[nodiscard]] std::string name() const { return enclosure + "##" + device; }
};

SIdentifier parseIdentifier(std::string_view text);

// The name of the target that an identifier names. The identifier must be well-formed.
std::string targetOf(std::string_view identifier);

// What is wrong with an identifier, in words, for a code of CFiUdidException.
std::string_view identifierFault(std::int32_t code);

}  // namespace fi_rotate
