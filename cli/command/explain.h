#pragma once

#include <CLI/CLI.hpp>

namespace fi_rotate {

// Adds `explain` to `app`. When the command line names it, parsing runs it and leaves its exit status in
// `exitStatus`, which is borrowed; wrong usage is a CLI::ParseError.
void addExplain(CLI::App& app, int& exitStatus);

}  // namespace fi_rotate
