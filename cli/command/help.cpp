#include "cli/command/help.h"

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/command/completion.h"

namespace fi_rotate {
namespace {

constexpr std::size_t kWidth = 80;
// Where descriptions begin.
constexpr std::size_t kColumn = 30;

// The words of `text` on lines of at most kWidth columns. The first line already has `used` columns; the
// others begin at `column`.
std::string wrapped(const std::string& text, std::size_t used, std::size_t column) {
    std::string lines;
    std::istringstream words(text);
    bool isFirst = true;
    for (std::string word; words >> word; isFirst = false) {
        if (!isFirst && used + 1 + word.size() > kWidth) {
            lines += "\n" + std::string(column, ' ');
            used = column;
        } else if (!isFirst) {
            lines += ' ';
            ++used;
        }
        lines += word;
        used += word.size();
    }
    return lines;
}

std::string described(const std::string& name, const std::string& description) {
    std::string text = "  " + name;
    if (text.size() + 2 > kColumn) {
        text += "\n" + std::string(kColumn, ' ');
    } else {
        text.resize(kColumn, ' ');
    }
    return text + wrapped(description, kColumn, kColumn) + "\n";
}

bool isGroup(const CLI::App* subcommand) {
    return subcommand->get_name().empty();
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

std::string lineOf(const CLI::Option* option) {
    const SOption shown = optionOf(*option);
    const bool isPositional = option->get_positional();
    std::string name =
        isPositional ? option->get_name(true) : fmt::format("{}", fmt::join(namesOf(*option), ", "));
    std::string description = shown.description;
    if (!shown.value.empty() && !isPositional) {
        name += " " + shown.value + (option->get_allow_extra_args() ? "..." : "");
        const bool isRepeatable = option->get_expected_max() == CLI::detail::expected_max_vector_size;
        description += isRepeatable ? "; may be repeated" : "";
    }
    // There are too many names of hazards to list them.
    if (!shown.words.empty() && shown.value != "NAME") {
        description += fmt::format(": {}", fmt::join(shown.words, ", "));
    }
    return described(name, description + (option->get_required() ? " (required)" : ""));
}

std::string optionsUnder(const std::string& heading, const CLI::App& app, bool arePositional) {
    std::string text;
    for (const CLI::Option* const option : app.get_options()) {
        // Each group has a help option of its own.
        const bool isShown =
            option->get_positional() == arePositional && !(isGroup(&app) && option == app.get_help_ptr());
        text += isShown ? lineOf(option) : "";
    }
    return text.empty() ? text : fmt::format("\n{}:\n{}", heading, text);
}

std::string subcommandsOf(const CLI::App& app) {
    std::string text;
    for (const CLI::App* const subcommand : app.get_subcommands({})) {
        text += isGroup(subcommand) ? "" : described(subcommand->get_name(), subcommand->get_description());
    }
    return text.empty() ? text : "\nSubcommands:\n" + text;
}

// How far the continuation of an indented line of a footer is indented: in the list of exit statuses, to the
// text after the number.
std::size_t continuationIndentOf(const std::string& line) {
    const std::size_t word = line.find_first_not_of(' ');
    const std::size_t gap = line.find("  ", word);
    return gap == std::string::npos ? word : line.find_first_not_of(' ', gap);
}

std::string footerOf(const CLI::App& app) {
    std::string text;
    std::string paragraph;
    const auto endParagraph = [&] {
        text += paragraph.empty() ? "" : wrapped(paragraph, 0, 0) + "\n";
        paragraph.clear();
    };
    std::istringstream lines(app.get_footer());
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.front() != ' ') {
            paragraph += line + " ";
            continue;
        }
        endParagraph();
        const std::size_t indent = line.find_first_not_of(' ');
        // A command is not wrapped, so that it can be copied.
        const bool isKept = line.size() <= kWidth || line.find("fi-rotate") != std::string::npos;
        text += (isKept || indent == std::string::npos
                     ? line
                     : line.substr(0, continuationIndentOf(line)) +
                           wrapped(line.substr(continuationIndentOf(line)), continuationIndentOf(line),
                                   continuationIndentOf(line))) +
                "\n";
    }
    endParagraph();
    return text;
}

}  // namespace

std::string helpOf(const CLI::App& app, const std::string& name) {
    std::string text = wrapped(app.get_description(), 0, 0) + "\n" + CLI::Formatter().make_usage(&app, name) +
                       optionsUnder("Arguments", app, true);
    for (const CLI::App* const group : app.get_subcommands(isGroup)) {
        text += optionsUnder("Exactly one of these is required", *group, false);
    }
    const std::string footer = footerOf(app);
    return text + optionsUnder("Options", app, false) + subcommandsOf(app) +
           (footer.empty() ? "" : "\n" + footer);
}

}  // namespace fi_rotate
