#include "cli/command/program.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/base/file.h"
#include "cli/base/text.h"
#include "cli/check/nearest.h"
#include "cli/command/command.h"
#include "cli/command/completion.h"
#include "cli/command/help.h"
#include "cli/command/subcommands.h"

namespace fi_rotate {
namespace {

// The one that `word` was probably meant to be, as the rest of a message.
std::string didYouMean(const std::string& word, const std::vector<std::string>& known) {
    constexpr std::size_t kTooFar = 4;
    std::size_t least = kTooFar;
    std::string nearest;
    for (const std::string& candidate : known) {
        const std::size_t far = distance(word, candidate, least);
        nearest = far < least ? candidate : nearest;
        least = std::min(far, least);
    }
    return nearest.empty() ? "" : fmt::format("; did you mean {}?", nearest);
}

// What the program understands in the place of a word that it did not.
std::vector<std::string> knownWords(const CLI::App& app, const std::string& word) {
    std::vector<std::string> known;
    if (startsWith(word, "-")) {
        for (const SOption& option : optionsOf(app)) {
            known.push_back(option.name);
        }
        return known;
    }
    for (const CLI::App* const subcommand : app.get_subcommands({})) {
        known.push_back(subcommand->get_name());
    }
    return known;
}

std::string failureMessage(const CLI::App* app, const CLI::Error& error) {
    const std::vector<CLI::App*> chosen = app->get_subcommands();
    const CLI::App& place = chosen.empty() ? *app : *chosen.front();
    const std::vector<std::string> unknown = app->remaining(true);
    std::string message = error.what();
    if (!unknown.empty()) {
        const std::string word = unknown.front().substr(0, unknown.front().find('='));
        const bool isOption = startsWith(word, "-");
        if (isOption || chosen.empty()) {
            message = fmt::format("there is no {} {}{}", isOption ? "option" : "subcommand",
                                  quotedPrintable(word), didYouMean(word, knownWords(place, word)));
        }
    }
    return fmt::format("fi-rotate: {}\nRun \"fi-rotate {}--help\" for help.\n", message,
                       chosen.empty() ? "" : place.get_name() + " ");
}

int parseAndRun(int argc, char** argv) {
    int exitStatus = kExitUsage;
    CLI::App app("Shows which backups give up their targets next, and why.", "fi-rotate");
    app.failure_message(failureMessage);
    addSubcommands(app, exitStatus);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version arrive as errors with status 0; all others are wrong usage.
        if (app.exit(error) != 0) {
            return kExitUsage;
        }
        std::cout.flush();
        return flushOrReport() ? kExitDone : kExitNotWritten;
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
    app.formatter_fn([](const CLI::App* shown, const std::string& name, CLI::AppFormatMode /*mode*/) {
        return helpOf(*shown, name);
    });
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
