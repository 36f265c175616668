#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace fi_rotate {

// The help of the program, or of a subcommand that was called by `name`: lines of at most 80 columns, and
// options of which one must be given under a heading that says so.
std::string helpOf(const CLI::App& app, const std::string& name);

}  // namespace fi_rotate
