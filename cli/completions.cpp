// Makes the completion of a shell: prints a script with the words that fi-rotate knows in the place of
// @WORDS@. Usage: fi-rotate-completions SCRIPT

#include <cstdio>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/base/file.h"
#include "cli/command/completion.h"
#include "cli/command/subcommands.h"

int main(int argc, char** argv) {
    constexpr std::string_view kPlace = "@WORDS@\n";
    auto script = argc == 2 ? fi_rotate::readFile(argv[1]) : std::nullopt;
    const std::size_t place = script.has_value() ? script->find(kPlace) : std::string::npos;
    if (place == std::string::npos) {
        std::fputs("fi-rotate-completions: not given a script with @WORDS@ in it\n", stderr);
        return 1;
    }
    int exitStatus = 0;
    CLI::App program;
    fi_rotate::addSubcommands(program, exitStatus);
    script->replace(place, kPlace.size(), fi_rotate::completionFunction(program));
    return std::fputs(script->c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
}
