#pragma once

#include <CLI/CLI.hpp>

namespace fi_rotate {

// Adds `simulate` to `app`. When the command line names it, parsing runs it and leaves its exit status in
// `exitStatus`, which is borrowed; wrong usage is a CLI::ParseError.
void addSimulate(CLI::App& app, int& exitStatus);

}  // namespace fi_rotate
