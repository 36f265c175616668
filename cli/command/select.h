#pragma once

#include <CLI/CLI.hpp>

namespace fi_rotate {

// Adds `select` to `app`. When the command line names it, parsing runs it and leaves its exit status in
// `exitStatus`, which is borrowed; wrong usage is a CLI::ParseError.
void addSelect(CLI::App& app, int& exitStatus);

}  // namespace fi_rotate
