#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/base/file.h"

// The output files that options name. Writing them must never destroy another file of the user: neither an
// input of the same command nor a file that something else has written.
namespace fi_rotate {

struct SOutput {
    const char* option = nullptr;
    std::optional<std::string> file;
    // Whether the option itself has written a file with this content.
    bool (*isOwnContent)(std::string_view content) = nullptr;
};

// Adds --force.
void addForceOption(CLI::App& subcommand, bool& isForced);

// Throws CLI::ValidationError when an output is an input, another output or standard output, under any name,
// or when it is a file that its option did not write; `isForced` allows the latter. To be called with all
// outputs and all inputs before any file is opened for writing.
void requireNoFileIsDestroyed(const std::vector<SOutput>& outputs, const std::vector<std::string>& inputs,
                              bool isForced);

// Opens the file before the work that fills it, so that a file that cannot be written is refused at once:
// throws CLI::ValidationError. Null when the option names no file.
std::unique_ptr<COutputFile> openOutput(const SOutput& output);

// Writes `text` after what was written to its stream before, and commits the file. Prints an error and
// returns false when not all could be written.
bool writeAndCommitOrReport(COutputFile& file, const std::string& text = "");

}  // namespace fi_rotate
