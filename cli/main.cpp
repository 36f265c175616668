#include <exception>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/command/command.h"
#include "cli/command/subcommands.h"

namespace {

std::string failureMessage(const CLI::App* app, const CLI::Error& error) {
    std::string message = std::string("fi-rotate: ") + error.what();
    // What could not be understood may be what is missing: a subcommand with its name misspelt.
    for (const std::string& argument : app->remaining()) {
        message += " \"" + argument + "\"";
    }
    return message + "\nRun fi-rotate with --help for help.\n";
}

int run(int argc, char** argv) {
    int exitStatus = fi_rotate::kExitUsage;
    CLI::App app("Runs rotations of snapshot targets by hand.", "fi-rotate");
    app.failure_message(failureMessage);
    fi_rotate::addSubcommands(app, exitStatus);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version arrive as errors with status 0; all others are wrong usage.
        const bool isWrong = app.exit(error) != 0;
        return isWrong ? fi_rotate::kExitUsage : fi_rotate::kExitDone;
    }
    return exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        fi_rotate::printError(error.what());
        return fi_rotate::kExitNotWritten;
    }
}
