#pragma once

#include <CLI/CLI.hpp>

namespace fi_rotate {

// Gives `app` what fi-rotate has: its version and its subcommands. When the command line names one, parsing
// runs it and leaves its exit status in `exitStatus`, which is borrowed; wrong usage is a CLI::ParseError.
void addSubcommands(CLI::App& app, int& exitStatus);

// One of them each.
void addSelect(CLI::App& app, int& exitStatus);
void addCheck(CLI::App& app, int& exitStatus);
void addExplain(CLI::App& app, int& exitStatus);
void addSimulate(CLI::App& app, int& exitStatus);

}  // namespace fi_rotate
