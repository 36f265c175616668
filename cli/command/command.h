#pragma once

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
void printError(const std::string& message);

// Writes `text` to standard output and flushes it; false, with a message, when something that was written
// there is lost.
bool printOrReport(const std::string& text);

// The same of what was written there before.
bool flushOrReport();

// Before the work that fills it, so that a file that cannot be written is refused at once: throws
// CLI::ValidationError. Null without a file.
std::unique_ptr<COutputFile> openOutput(const std::string& option, const std::optional<std::string>& file);

// Writes `text`, behind what its stream took before, and commits the file; false, with a message, when it
// could not be written whole.
bool commitOrReport(COutputFile& file, const std::string& text = "");

}  // namespace fi_rotate
