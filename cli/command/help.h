#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace fi_rotate {

// The help of the program or of the subcommand `name`, in lines of at most 80 columns. Options of which
// exactly one must be given have a heading that says so.
std::string helpOf(const CLI::App& app, const std::string& name);

}  // namespace fi_rotate
