#include "cli/command/command.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <system_error>
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

void printError(const std::string& message) {
    fmt::print(stderr, "fi-rotate: {}\n", asPrintable(message));
}

bool flushOrReport() {
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!isWritten) {
        printError("cannot write standard output: " + errorText());
    }
    return isWritten;
}

bool printOrReport(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    return flushOrReport();
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

bool commitOrReport(COutputFile& file, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), file.stream());
    try {
        file.commit();
        return true;
    } catch (const std::system_error& error) {
        printError("cannot write " + file.name() + ": " + error.code().message());
        return false;
    }
}

}  // namespace fi_rotate
