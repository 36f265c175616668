#include "cli/command/command.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "cli/base/file.h"
#include "cli/base/text.h"
#include "cli/check/nearest.h"
#include "cli/outcome/request.h"

namespace fi_rotate {
namespace {

std::string readFileOf(const std::string& option, const std::string& file) {
    std::optional<std::string> text = readFile(file);
    if (!text.has_value()) {
        throw CLI::ValidationError(option, "cannot read " + printableInQuotes(file) + ": " + errorText());
    }
    return *std::move(text);
}

// The most likely mistake with --config. A text without "##" names no target, and so is no configuration.
void requireNoFileName(const std::string& configuration) {
    std::error_code ignored;
    const bool namesATarget = configuration.find("##") != std::string::npos;
    if (!namesATarget && std::filesystem::is_regular_file(configuration, ignored)) {
        throw CLI::ValidationError(
            "--config", printableInQuotes(configuration) + " is a file; give it with --config-file");
    }
}

SCall readRequest(const std::string& file) {
    const std::string text = readFileOf("--request", file);
    try {
        return parseRequest(text);
    } catch (const std::invalid_argument& fault) {
        throw CLI::ValidationError("--request",
                                   printableInQuotes(file) + " is not a request: " + fault.what());
    }
}

}  // namespace

void setFooter(CLI::App& subcommand, const std::string& text) {
    std::string footer = fmt::format(R"({}

The JSON Schema fi-rotate-{}.json describes the output of --json; fi-rotate(1) says where it is installed. A byte
that is not valid UTF-8 is shown as \xNN, where NN is its value in hexadecimal.

Exit status:)",
                                     text, subcommand.get_name());
    for (const SExitStatus& row : kExitStatuses) {
        if (row.subcommand == subcommand.get_name() || row.subcommand == "all") {
            footer += fmt::format("\n{:>5}  {}", row.status, row.meaning);
        }
    }
    subcommand.footer(footer);
}

CLI::Option_group& addConfigurationOptions(CLI::App& subcommand, const std::string& group,
                                           SCallOptions& options) {
    CLI::Option_group& added = *subcommand.add_option_group(group);
    added.add_option("--config", options.configuration, "Use this text as the resource configuration")
        ->type_name("TEXT");
    added
        .add_option("--config-file", options.configurationFile, "Read the resource configuration from a file")
        ->type_name("FILE");
    added.require_option(1);
    return added;
}

CLI::Option* addRequestOption(CLI::Option_group& group, SCallOptions& options) {
    return group
        .add_option("--request", options.request,
                    "Read the whole call (configuration, documents, flag words) from a JSON file")
        ->type_name("FILE");
}

SCall readCall(const SCallOptions& options) {
    if (options.request.has_value()) {
        return readRequest(*options.request);
    }
    SCall call;
    if (options.configuration.has_value()) {
        requireNoFileName(*options.configuration);
        call.configuration = *options.configuration;
    } else {
        call.configuration = readFileOf("--config-file", *options.configurationFile);
    }
    return call;
}

SCall readCallWithoutNul(const SCallOptions& options) {
    SCall call = readCall(options);
    // Neither an argument nor a request can hold one.
    if (call.configuration.find('\0') != std::string::npos) {
        throw CLI::ValidationError("--config-file",
                                   printableInQuotes(*options.configurationFile) + " contains a NUL byte");
    }
    return call;
}

std::vector<std::string> inputsOf(const SCallOptions& options, const SCall& call) {
    std::vector<std::string> inputs;
    for (const auto& file : {options.configurationFile, options.request}) {
        if (file.has_value()) {
            inputs.push_back(*file);
        }
    }
    for (const SBackup& backup : call.backups) {
        inputs.push_back(backup.file);
    }
    return inputs;
}

void addOnlyOption(CLI::App& subcommand, std::set<std::string>& states) {
    subcommand.add_option("--only", states, "Show only the backups in these states, separated by commas")
        ->type_name("STATE")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(kStateWords));
}

void requireWholeNumber(CLI::Option& option, std::size_t least, std::size_t most) {
    const auto read = [least, most](std::string& text) -> std::string {
        const char* const end = text.data() + text.size();
        std::size_t number = 0;
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end || number < least || number > most) {
            return fmt::format("{} is not a whole number from {} to {}", printableInQuotes(text), least,
                               most);
        }
        text = fmt::to_string(number);
        return "";
    };
    option.transform(CLI::Validator(read, ""));
}

std::string suggestion(const std::string& word, const std::vector<std::string>& known) {
    constexpr std::size_t kCharactersForEachMistake = 3;
    std::size_t least = word.size() / kCharactersForEachMistake + 1;
    std::string nearest;
    for (const std::string& candidate : known) {
        const std::size_t mistakes = editDistance(word, candidate, least);
        nearest = mistakes < least ? candidate : nearest;
        least = std::min(mistakes, least);
    }
    return nearest.empty() ? "" : fmt::format("; did you mean {}?", nearest);
}

bool wantsColour() {
    const char* const terminal = std::getenv("TERM");
    const bool isDumb = terminal != nullptr && std::string_view(terminal) == "dumb";
    return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr && !isDumb;
}

void printError(const std::string& message) {
    fmt::print(stderr, "fi-rotate: {}\n", asPrintable(message));
}

bool flushOrReport() {
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!isWritten) {
        printError("cannot write standard output: " + errorText());
    }
    return isWritten;
}

bool printOrReport(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    return flushOrReport();
}

}  // namespace fi_rotate
