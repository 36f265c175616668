#include "cli/command/program.h"

#include <cstddef>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "cli/base/file.h"
#include "cli/command/command.h"
#include "cli/command/completion.h"
#include "cli/command/subcommands.h"

namespace fi_rotate {
namespace {

std::string failureMessage(const CLI::App* app, const CLI::Error& error) {
    std::string message = std::string("fi-rotate: ") + error.what();
    // What could not be understood may be what is missing: a subcommand with its name misspelt.
    for (const std::string& argument : app->remaining()) {
        message += " \"" + argument + "\"";
    }
    return message + "\nRun fi-rotate with --help for help.\n";
}

int parseAndRun(int argc, char** argv) {
    int exitStatus = kExitUsage;
    CLI::App app("Runs rotations of snapshot targets by hand.", "fi-rotate");
    app.failure_message(failureMessage);
    addSubcommands(app, exitStatus);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version arrive as errors with status 0; all others are wrong usage.
        const bool isWrong = app.exit(error) != 0;
        return isWrong ? kExitUsage : kExitDone;
    }
    return exitStatus;
}

std::string completionOf(std::string script) {
    constexpr std::string_view kPlace = "@WORDS@\n";
    const std::size_t place = script.find(kPlace);
    if (place == std::string::npos) {
        throw std::runtime_error("the script has no line @WORDS@");
    }
    int exitStatus = 0;
    CLI::App app;
    addSubcommands(app, exitStatus);
    return script.replace(place, kPlace.size(), completionFunction(app));
}

}  // namespace

void addSubcommands(CLI::App& app, int& exitStatus) {
    app.set_version_flag("--version", FI_ROTATION_VERSION);
    app.require_subcommand(1);
    addSelect(app, exitStatus);
    addCheck(app, exitStatus);
    addExplain(app, exitStatus);
    addSimulate(app, exitStatus);
}

int runProgram(int argc, char** argv) noexcept {
    try {
        return parseAndRun(argc, argv);
    } catch (const std::exception& error) {
        printError(error.what());
        return kExitNotWritten;
    }
}

bool printCompletion(const char* script) noexcept {
    try {
        const auto text = readFile(script);
        if (!text.has_value()) {
            throw std::runtime_error(std::string(script) + ": " + errorText());
        }
        return printOrReport(completionOf(*text));
    } catch (const std::exception& error) {
        printError(error.what());
        return false;
    }
}

}  // namespace fi_rotate
