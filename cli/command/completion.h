#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace fi_rotate {

// An option as the help shows it.
struct SOption {
    // With its dashes.
    std::string name;
    // What its value is called; empty when it takes none.
    std::string value;
    std::string description;
    // The values that it accepts; empty when other values are possible too.
    std::vector<std::string> words;
    // Whether its value may be several of them, separated by commas.
    bool takesList = false;
};

SOption optionOf(const CLI::Option& option);

// The options of the program or of a subcommand, those in groups too.
std::vector<SOption> optionsOf(const CLI::App& app);

// A function for bash and zsh that offers the words that may follow in a command line, by calling functions
// of the script that it becomes part of:
//   _fi_rotate_words ''                     subcommands, and options of the program
//   _fi_rotate_words 'SUBCOMMAND'           its options
//   _fi_rotate_words 'SUBCOMMAND OPTION'    values of an option; fails when it takes none
std::string completionFunction(const CLI::App& program);

}  // namespace fi_rotate
