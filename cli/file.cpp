#include "cli/file.h"

#include <cerrno>
#include <cstddef>
#include <system_error>

namespace fi_rotate {

std::string errorText() {
    return std::generic_category().message(errno);
}

std::optional<std::string> readAll(std::FILE* stream) {
    std::string content;
    char piece[65536];
    while (const std::size_t length = std::fread(piece, 1, sizeof piece, stream)) {
        content.append(piece, length);
    }
    if (std::ferror(stream) != 0) {
        return std::nullopt;
    }
    return content;
}

std::optional<std::string> readFile(const std::string& file) {
    const CFile stream(std::fopen(file.c_str(), "rb"));
    return stream == nullptr ? std::nullopt : readAll(stream.get());
}

}  // namespace fi_rotate
