#include "cli/command/program.h"

#include <exception>
#include <iostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/base/file.h"
#include "cli/base/text.h"
#include "cli/command/command.h"
#include "cli/command/completion.h"
#include "cli/command/help.h"
#include "cli/command/subcommands.h"

namespace fi_rotate {
namespace {

// What the option parser says, and what is printed instead: its own texts do not say what to do.
struct SRewording {
    const char* pattern = "";
    const char* words = "";
    // The words end in a list without blanks between its members.
    bool endsInList = false;
};
constexpr SRewording kRewordings[] = {
    {"A subcommand is required", "give a subcommand"},
    {R"(Exactly 1 option from \[(.*)\] is required.*)", "give exactly one of $1", true},
    {R"((\S+): 1 required (\S+) missing)", "$1 needs a value: $1 $2"},
    {R"((\S+): At Most 1 required but received \d+)", "$1 is given more than once"},
    {R"((\S+): (.*) not in \{(.*)\})", "$1: \"$2\" is not one of $3", true},
    {R"((\S+) excludes (\S+))", "$1 cannot be used together with $2"},
    {R"((\S+) requires (\S+))", "$1 needs $2"},
    {R"(The following arguments? (?:was|were) not expected: (.*))", "unexpected arguments: $1"},
};

std::string inOurWords(const std::string& message) {
    for (const SRewording& row : kRewordings) {
        const std::regex pattern(row.pattern);
        if (std::regex_match(message, pattern)) {
            const std::string words = std::regex_replace(message, pattern, row.words);
            return row.endsInList ? std::regex_replace(words, std::regex(",(?! )"), ", ") : words;
        }
    }
    return message;
}

// The words that the program knows where it found `word`, which it does not know.
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
    std::string message = inOurWords(error.what());
    if (!unknown.empty()) {
        const std::string word = unknown.front().substr(0, unknown.front().find('='));
        const bool isOption = startsWith(word, "-");
        if (isOption || chosen.empty()) {
            message = fmt::format("there is no {} {}{}", isOption ? "option" : "subcommand",
                                  printableInQuotes(word), suggestion(word, knownWords(place, word)));
        }
    }
    return fmt::format("fi-rotate: {}\nRun \"fi-rotate {}--help\" for help.\n", message,
                       chosen.empty() ? "" : place.get_name() + " ");
}

int parseAndRun(int argc, char** argv) {
    int exitStatus = kExitUsage;
    CLI::App app("Show which targets the next snapshot backup may use, and which backups are rotated for it.",
                 "fi-rotate");
    app.failure_message(failureMessage);
    addSubcommands(app, exitStatus);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // --help and --version throw errors with status 0; all other errors are wrong usage.
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

bool printCompletionOrReport(const char* script) noexcept {
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
