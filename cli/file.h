#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace fi_rotate {

struct SFileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using CFile = std::unique_ptr<std::FILE, SFileClose>;

// What errno says.
std::string errorText();

// All bytes that are left of `stream`; nothing, with errno set, when they cannot be read.
std::optional<std::string> readAll(std::FILE* stream);

// All bytes of `file`; nothing, with errno set, when it cannot be opened or read.
std::optional<std::string> readFile(const std::string& file);

}  // namespace fi_rotate
