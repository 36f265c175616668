#include "cli/command/command.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/base/file.h"
#include "cli/base/text.h"
#include "cli/outcome/request.h"

namespace fi_rotate {

std::string quoted(const std::string& text) {
    return '"' + asPrintable(text) + '"';
}

std::string readFileOf(const std::string& option, const std::string& file) {
    std::optional<std::string> text = readFile(file);
    if (!text.has_value()) {
        throw CLI::ValidationError(option, "cannot read " + quoted(file) + ": " + errorText());
    }
    return *std::move(text);
}

std::string readConfigurationFile(const std::string& file) {
    std::string text = readFileOf("--config-file", file);
    // The library would take the text before it for the whole.
    if (text.find('\0') != std::string::npos) {
        throw CLI::ValidationError("--config-file", quoted(file) + " holds a NUL byte");
    }
    return text;
}

SCall readRequestFile(const std::string& file) {
    const std::string text = readFileOf("--request", file);
    try {
        return parseRequest(text);
    } catch (const std::invalid_argument& fault) {
        throw CLI::ValidationError("--request", quoted(file) + " is no request: " + fault.what());
    }
}

bool wantsColour() {
    return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
}

void say(const std::string& message) {
    fmt::print(stderr, "fi-rotate: {}\n", asPrintable(message));
}

bool isWritten(std::FILE* stream, const std::string& name) {
    const bool written = std::fflush(stream) == 0 && std::ferror(stream) == 0;
    if (!written) {
        say("cannot write " + name + ": " + errorText());
    }
    return written;
}

std::unique_ptr<COutputFile> openOutput(const std::string& option, const std::optional<std::string>& file) {
    if (!file.has_value()) {
        return nullptr;
    }
    try {
        return std::make_unique<COutputFile>(*file);
    } catch (const std::system_error& error) {
        throw CLI::ValidationError(option, "cannot write " + quoted(*file) + ": " + error.code().message());
    }
}

bool keep(COutputFile& file, const std::string& text, const std::string& name) {
    try {
        file.write(text);
        file.keep();
        return true;
    } catch (const std::system_error& error) {
        say("cannot write " + name + ": " + error.code().message());
        return false;
    }
}

}  // namespace fi_rotate
