#pragma once

#include <CLI/CLI.hpp>

namespace fi_rotate {

// Adds the version and the subcommands of fi-rotate to `app`. Parsing a command line then runs the subcommand
// that it names and stores its exit status in `exitStatus`, which is borrowed. Wrong usage throws a
// CLI::ParseError.
void addSubcommands(CLI::App& app, int& exitStatus);

// Each adds one subcommand.
void addSelect(CLI::App& app, int& exitStatus);
void addCheck(CLI::App& app, int& exitStatus);
void addExplain(CLI::App& app, int& exitStatus);
void addSimulate(CLI::App& app, int& exitStatus);

}  // namespace fi_rotate
