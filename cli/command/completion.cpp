#include "cli/command/completion.h"

#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "cli/base/calendar.h"
#include "cli/base/text.h"
#include "cli/check/hazard.h"

namespace fi_rotate {
namespace {

using Words = std::vector<std::string>;

// Groups of options are subcommands without a name.
bool isGroup(const CLI::App* subcommand) {
    return subcommand->get_name().empty();
}

// The words that an option accepts, by the name of its value. For an option that accepts only certain words
// the name lists them: NAME:{WORD,WORD}.
Words wordsFor(const std::string& value) {
    Words words;
    const std::size_t begin = value.find('{');
    if (begin != std::string::npos) {
        words = CLI::detail::split(value.substr(begin + 1, value.rfind('}') - begin - 1), ',');
    } else if (value == "DAY") {
        words.assign(kWeekdays.begin(), kWeekdays.end());
    } else if (value == "NAME") {
        for (const SHazardKind& kind : hazardKinds()) {
            words.emplace_back(kind.name);
        }
    }
    return words;
}

// `text` quoted for the shell, as one argument of a command.
std::string inShellQuotes(const std::string& text) {
    std::string result = "'";
    for (const char character : text) {
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return result + "'";
}

std::string offerOf(const Words& words, bool isList = false) {
    std::string offer = isList ? "_fi_rotate_offer_list" : "_fi_rotate_offer";
    for (const std::string& word : words) {
        offer += " \\\n                " + inShellQuotes(word);
    }
    return offer;
}

std::string offerFor(const SOption& option) {
    if (!option.words.empty()) {
        return offerOf(option.words, option.takesList);
    }
    return startsWith(option.value, "FILE")
               ? "_fi_rotate_offer_files"
               : "_fi_rotate_offer_nothing " + inShellQuotes(option.value + ": " + option.description);
}

std::string caseOf(const std::string& place, const std::string& offer) {
    return fmt::format("        {})\n            {}\n            ;;\n", inShellQuotes(place), offer);
}

Words described(const std::vector<SOption>& options) {
    Words words;
    for (const SOption& option : options) {
        words.push_back(option.name + ":" + option.description);
    }
    return words;
}

std::string casesOf(const CLI::App& subcommand) {
    const std::vector<SOption> options = optionsOf(subcommand);
    std::string cases = caseOf(subcommand.get_name(), offerOf(described(options)));
    for (const SOption& option : options) {
        if (!option.value.empty()) {
            cases += caseOf(subcommand.get_name() + " " + option.name, offerFor(option));
        }
    }
    return cases;
}

}  // namespace

SOption optionOf(const CLI::Option& option) {
    const std::string name = option.get_lnames().empty() ? "" : "--" + option.get_lnames().front();
    const std::string type = option.get_type_size() == 0 ? "" : option.get_type_name();
    return {name, type.substr(0, type.find(':')), option.get_description(), wordsFor(type),
            option.get_delimiter() == ','};
}

std::vector<SOption> optionsOf(const CLI::App& app) {
    std::vector<SOption> options;
    for (const CLI::Option* const option : app.get_options()) {
        if (!option->get_lnames().empty()) {
            options.push_back(optionOf(*option));
        }
    }
    for (const CLI::App* const group : app.get_subcommands(isGroup)) {
        for (SOption& option : optionsOf(*group)) {
            // Each has one of its own, which the help does not show.
            if (option.name != "--help") {
                options.push_back(std::move(option));
            }
        }
    }
    return options;
}

std::string completionFunction(const CLI::App& program) {
    Words first = described(optionsOf(program));
    std::string cases;
    for (const CLI::App* const subcommand : program.get_subcommands([](const CLI::App*) { return true; })) {
        first.push_back(subcommand->get_name() + ":" + subcommand->get_description());
        cases += casesOf(*subcommand);
    }
    return "_fi_rotate_words() {\n    case $1 in\n" + caseOf("", offerOf(first)) + cases +
           "        *)\n            return 1\n            ;;\n    esac\n    return 0\n}\n";
}

}  // namespace fi_rotate
