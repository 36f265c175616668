#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/command/exit_status.h"
#include "host/library_call.h"

// What the subcommands have in common.
namespace fi_rotate {

// Ends the help of a subcommand with `text`, its JSON schema and its exit statuses.
void setFooter(CLI::App& subcommand, const std::string& text);

// Where the call comes from. Exactly one of these is set.
struct SCallOptions {
    std::optional<std::string> configuration;
    std::optional<std::string> configurationFile;
    std::optional<std::string> request;
};

// Adds --config and --config-file in a group of which exactly one option must be given.
CLI::Option_group& addConfigurationOptions(CLI::App& subcommand, const std::string& group,
                                           SCallOptions& options);

// Adds --request to that group.
CLI::Option* addRequestOption(CLI::Option_group& group, SCallOptions& options);

// Reads the call that the options name; it has backups only when it is a request. Throws CLI::ValidationError
// when a file cannot be read or is not a request.
SCall readCall(const SCallOptions& options);

// The same for a call of the library, which would read a configuration only up to its first NUL: throws
// CLI::ValidationError when it contains one.
SCall readCallWithoutNul(const SCallOptions& options);

// The files that the options name, and the documents of the call.
std::vector<std::string> inputsOf(const SCallOptions& options, const SCall& call = {});

// Adds --only, which fills `states`.
void addOnlyOption(CLI::App& subcommand, std::set<std::string>& states);

// Lets the option take whole numbers from `least` to `most`, written as decimal digits only. CLI11 by itself
// reads "-1" as the largest number and "010" as eight.
void requireWholeNumber(CLI::Option& option, std::size_t least, std::size_t most);

// The one of `known` that `word` is probably a misspelling of, as the rest of a message; empty when there is
// none.
std::string suggestion(const std::string& word, const std::vector<std::string>& known);

// Whether standard output is a terminal that can show colours, and the user has not turned them off.
bool wantsColour();

// Writes a line to standard error.
void printError(const std::string& message);

// Writes `text` to standard output and flushes it. Prints an error and returns false when not all could be
// written.
bool printOrReport(const std::string& text);

// Flushes what was written to standard output before, with the same error and result.
bool flushOrReport();

}  // namespace fi_rotate
