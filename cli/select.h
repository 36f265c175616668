#pragma once

#include <CLI/CLI.hpp>

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

// Adds `select` to `app`. When the command line names it, parsing runs it and leaves its exit status in
// `exitStatus`, which is borrowed; wrong usage is a CLI::ParseError.
void addSelect(CLI::App& app, int& exitStatus);

}  // namespace fi_rotate
