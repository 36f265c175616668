#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "cli/base/file.h"
#include "host/library_call.h"

// What the subcommands have in common.
namespace fi_rotate {

// Exit statuses of the program.
enum EExit : int {
    kExitSelection = 0,
    // The outcome could not be shown: a write failed or memory ran out.
    kExitNotShown = 1,
    kExitUsage = 2,
    kExitNoSelection = 3,
    kExitException = 4,
};

// In quotation marks, on one line.
std::string quoted(const std::string& text);

// The bytes of `file`, which was given with `option`. Throws CLI::ValidationError when it cannot be read.
std::string readFileOf(const std::string& option, const std::string& file);

// Throws CLI::ValidationError when it cannot be read, or when the library would not read it whole.
std::string readConfigurationFile(const std::string& file);

// Throws CLI::ValidationError when it cannot be read or is no request.
SCall readRequestFile(const std::string& file);

// Standard output is a terminal, and nobody asked for no colour.
bool wantsColour();

// Writes a line to standard error.
void say(const std::string& message);

// Flushes what was written to `stream`, called `name`; false, with a message, when a write failed.
bool isWritten(std::FILE* stream, const std::string& name);

// Before the work that fills it, so that a file that cannot be written is refused at once: throws
// CLI::ValidationError. Null without a file.
std::unique_ptr<COutputFile> openOutput(const std::string& option, const std::optional<std::string>& file);

// Writes the file, called `name`, and keeps it; false, with a message, when it could not be written whole.
bool keep(COutputFile& file, const std::string& text, const std::string& name);

}  // namespace fi_rotate
