#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/base/file.h"

// The files that options name for output. None of them may cost the user a file: not an input of the same
// command, and not one that something else has written.
namespace fi_rotate {

struct SOutput {
    const char* option = nullptr;
    std::optional<std::string> file;
    // Whether the content of an existing file is what this option writes.
    bool (*isOwn)(std::string_view content) = nullptr;
};

// Adds --force.
void addForceOption(CLI::App& subcommand, bool& isForced);

// To be called with all outputs and all inputs before any file is opened for writing: throws
// CLI::ValidationError when an output is an input, another output or standard output, under whatever name, or
// when it is a file that its option did not write. `isForced` allows the last of these.
void requireHarmless(const std::vector<SOutput>& outputs, const std::vector<std::string>& inputs,
                     bool isForced);

// Before the work that fills it, so that a file that cannot be written is refused at once: throws
// CLI::ValidationError. Null without a file.
std::unique_ptr<COutputFile> openOutput(const SOutput& output);

// Writes `text`, behind what its stream took before, and commits the file; false, with a message, when it
// could not be written whole.
bool commitOrReport(COutputFile& file, const std::string& text = "");

}  // namespace fi_rotate
