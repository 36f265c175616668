#include "cli/command/program.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>
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
    {R"((\S+): 1 required \S+:\{(.*)\} missing)", "$1 needs a value, one of $2", true},
    {R"((\S+): 1 required (\S+) missing)", "$1 needs a value: $1 $2"},
    {R"((\S+): At Most 1 required but received \d+)", "$1 is given more than once"},
    {R"((\S+): (.*) not in \{(.*)\})", "$1: \"$2\" is not one of $3", true},
    {R"((\S+) excludes (\S+))", "$1 cannot be used together with $2"},
    {R"((\S+) requires (\S+))", "$1 needs $2"},
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

std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const SOption& option : optionsOf(app)) {
        names.push_back(option.name);
    }
    return names;
}

std::vector<std::string> subcommandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const subcommand : app.get_subcommands({})) {
        names.push_back(subcommand->get_name());
    }
    return names;
}

bool hasOption(const CLI::App& app, const std::string& name) {
    const std::vector<std::string> names = optionNames(app);
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string describeUnknownOption(const CLI::App& app, const CLI::App& place, const std::string& name) {
    std::vector<const CLI::App*> owners{&place};
    const auto subcommands = app.get_subcommands({});
    owners.insert(owners.end(), subcommands.begin(), subcommands.end());
    // The subcommand must come first: the options before it are the program's.
    for (const CLI::App* const owner : owners) {
        if (owner != &app && !app.remaining().empty() && hasOption(*owner, name)) {
            return fmt::format("give {0} after the subcommand: fi-rotate {1} {0}", name, owner->get_name());
        }
    }
    return fmt::format("there is no option {}{}", printableInQuotes(name),
                       suggestion(name, optionNames(place)));
}

std::string describeUnexpected(const CLI::App& place, const std::vector<std::string>& words) {
    std::string message = words.size() == 1 ? "unexpected argument:" : "unexpected arguments:";
    for (const std::string& word : words) {
        message += " " + printableInQuotes(word);
    }
    return message +
           (hasOption(place, "--from")
                ? "; give documents with --from, and each that is excluded with an --exclude of its own"
                : "");
}

// The required options of `place` that are not given: the option parser names only the first.
std::vector<std::string> missingOptions(const CLI::App& place) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : place.get_options()) {
        if (option->get_required() && option->count() == 0) {
            names.push_back(option->get_name());
        }
    }
    return names;
}

bool isOfKind(const CLI::Error& error, CLI::ExitCodes kind) {
    return error.get_exit_code() == static_cast<int>(kind);
}

std::string describeFailure(const CLI::App& app, const CLI::App& place, const CLI::Error& error) {
    const std::vector<std::string> unexpected = app.remaining(true);
    if (!unexpected.empty()) {
        const std::string word = unexpected.front().substr(0, unexpected.front().find('='));
        if (startsWith(word, "-")) {
            return describeUnknownOption(app, place, word);
        }
        if (!app.remaining().empty()) {
            return fmt::format("there is no subcommand {}{}", printableInQuotes(word),
                               suggestion(word, subcommandNames(app)));
        }
        if (isOfKind(error, CLI::ExitCodes::ExtrasError)) {
            return describeUnexpected(place, unexpected);
        }
    }
    const std::vector<std::string> missing = missingOptions(place);
    if (isOfKind(error, CLI::ExitCodes::RequiredError) && missing.size() > 1) {
        return fmt::format("{} are required", fmt::join(missing, ", "));
    }
    return inOurWords(error.what());
}

std::string failureMessage(const CLI::App* app, const CLI::Error& error) {
    const std::vector<CLI::App*> chosen = app->get_subcommands();
    const CLI::App& place = chosen.empty() ? *app : *chosen.front();
    return fmt::format("fi-rotate: {}\nRun \"fi-rotate {}--help\" for help.\n",
                       describeFailure(*app, place, error), chosen.empty() ? "" : place.get_name() + " ");
}

// The arguments as the option parser takes them, the last first. "help SUBCOMMAND" is "SUBCOMMAND --help"; of
// another word the parser then says that there is no such subcommand.
std::vector<std::string> reversedArguments(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    if (!arguments.empty() && arguments.front() == "help") {
        arguments.erase(arguments.begin());
        const std::vector<std::string> known = subcommandNames(app);
        if (arguments.empty() || std::find(known.begin(), known.end(), arguments.front()) != known.end()) {
            arguments.emplace_back("--help");
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

int parseAndRun(int argc, char** argv) {
    int exitStatus = kExitUsage;
    CLI::App app("Show which targets the next snapshot backup may use, and which backups are rotated for it.",
                 "fi-rotate");
    app.failure_message(failureMessage);
    addSubcommands(app, exitStatus);
    try {
        app.parse(reversedArguments(app, argc, argv));
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
