#include "cli/file.h"

#include <cstddef>

namespace fi_rotate {

std::optional<std::string> readFile(const std::string& file) {
    const CFile stream(std::fopen(file.c_str(), "rb"));
    if (stream == nullptr) {
        return std::nullopt;
    }
    std::string content;
    char piece[65536];
    while (const std::size_t length = std::fread(piece, 1, sizeof piece, stream.get())) {
        content.append(piece, length);
    }
    if (std::ferror(stream.get()) != 0) {
        return std::nullopt;
    }
    return content;
}

}  // namespace fi_rotate
