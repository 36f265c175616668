// The manual page fi-rotate(1) and the schemas list exactly what the program knows.

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "cli/base/calendar.h"
#include "cli/base/file.h"
#include "cli/base/text.h"
#include "cli/check/hazard.h"
#include "cli/command/completion.h"
#include "cli/command/exit_status.h"
#include "cli/command/subcommands.h"
#include "host/account.h"
#include "host/outcome.h"

namespace {

using Words = std::vector<std::string>;

constexpr const char* kPage = "docs/man/fi-rotate.1.scd";

std::string contentOf(const std::string& file) {
    const auto content = fi_rotate::readFile(std::string(FI_ROTATION_SOURCE "/") + file);
    return content.has_value() ? *content : throw std::runtime_error("cannot read " + file);
}

// The lines of the page below a heading, up to the next one.
Words linesBelow(const std::string& heading) {
    std::istringstream page(contentOf(kPage));
    Words lines;
    bool isBelow = false;
    for (std::string line; std::getline(page, line);) {
        if (fi_rotate::startsWith(line, "# ")) {
            isBelow = line == "# " + heading;
        } else if (isBelow) {
            lines.push_back(line);
        }
    }
    return lines;
}

bool isMark(char character) {
    return character == '*' || character == '_';
}

// A text without the marks that emphasise it as a whole.
std::string plain(const std::string& text) {
    const bool isMarked = text.size() > 2 && isMark(text.front()) && isMark(text.back());
    return isMarked ? text.substr(1, text.size() - 2) : text;
}

// The rows of the table below a heading, each as the first lines of so many cells.
Words rowsBelow(const std::string& heading, std::size_t columns) {
    Words rows;
    std::size_t cells = 0;
    for (const std::string& line : linesBelow(heading)) {
        if (fi_rotate::startsWith(line, "|  ")) {
            rows.push_back(plain(line.substr(3)));
            cells = 1;
        } else if (!rows.empty() && fi_rotate::startsWith(line, ":  ") && cells < columns) {
            rows.back() += " | " + plain(line.substr(3));
            ++cells;
        }
    }
    return rows;
}

// The lines below a heading that consist of emphasised small letters.
Words termsBelow(const std::string& heading) {
    Words terms;
    for (const std::string& line : linesBelow(heading)) {
        const std::string term = plain(line);
        if (term != line && term.find_first_not_of("abcdefghijklmnopqrstuvwxyz ") == std::string::npos) {
            terms.push_back(term);
        }
    }
    return terms;
}

// The options of a line like "*--svg* _FILE_, *--csv* _FILE_", each with what its value is called.
Words optionsIn(const std::string& line) {
    Words options;
    for (std::size_t at = line.find("*--"); at != std::string::npos; at = line.find("*--", at + 1)) {
        const std::size_t end = line.find('*', at + 1);
        std::string option = line.substr(at, end - at);
        if (line.compare(end + 1, 2, " _") == 0) {
            option += " " + line.substr(end + 2, line.find_first_of(" ,[", end + 2) - end - 2);
        }
        option.erase(std::remove_if(option.begin(), option.end(), isMark), option.end());
        options.push_back(option);
    }
    return options;
}

// The options that the lines below a heading describe.
Words optionsBelow(const std::string& heading) {
    Words options;
    for (const std::string& line : linesBelow(heading)) {
        if (fi_rotate::startsWith(line, "*-")) {
            const Words described = optionsIn(line);
            options.insert(options.end(), described.begin(), described.end());
        }
    }
    return options;
}

// The words that a schema allows at `place`, except null.
Words choicesOf(const std::string& schema, const std::string& place) {
    const nlohmann::json document = nlohmann::json::parse(contentOf(schema));
    Words words;
    for (const nlohmann::json& word : document.at(nlohmann::json::json_pointer(place))) {
        if (!word.is_null()) {
            words.push_back(word);
        }
    }
    return words;
}

void expectAll(const std::string& list, const Words& listed, const std::string& source, const Words& known) {
    for (const std::string& word : known) {
        if (std::find(listed.begin(), listed.end(), word) == listed.end()) {
            ADD_FAILURE() << list << " lacks \"" << word << "\", which " << source << " has";
        }
    }
}

// `list` holds what `source` does, and nothing else.
void expectSame(const std::string& list, const Words& listed, const std::string& source, const Words& known) {
    ASSERT_FALSE(known.empty()) << source << " has nothing";
    expectAll(list, listed, source, known);
    expectAll(source, known, list, listed);
    EXPECT_EQ(listed.size(), std::set(listed.begin(), listed.end()).size())
        << list << " says something twice";
}

std::string onPage(const std::string& heading) {
    return std::string(kPage) + " under " + heading;
}

constexpr const char* kSelectSchema = "docs/schema/fi-rotate-select.json";

TEST(Docs, PageListsEveryExitStatus) {
    Words known;
    for (const fi_rotate::SExitStatus& row : fi_rotate::kExitStatuses) {
        known.push_back(fmt::format("{} | {} | {}", row.status, row.subcommand, row.meaning));
    }
    expectSame(onPage("EXIT STATUS"), rowsBelow("EXIT STATUS", 3), "cli/command/exit_status.h", known);
}

TEST(Docs, PageListsEveryHazard) {
    Words known;
    for (const fi_rotate::SHazardKind& kind : fi_rotate::hazardKinds()) {
        known.push_back(fmt::format("{} | {}", kind.name, nameOf(kind.severity)));
    }
    expectSame(onPage("HAZARDS"), rowsBelow("HAZARDS", 2), "cli/check/hazard.cpp", known);
    EXPECT_TRUE(HasFailure() || rowsBelow("HAZARDS", 2) == known)
        << "the rows of " << onPage("HAZARDS") << " are not in the order of cli/check/hazard.cpp";
}

TEST(Docs, PageAndSchemaListEveryReason) {
    Words known;
    for (int i = 0; i < int(fi_rotate::EReason::kCount); ++i) {
        known.emplace_back(nameOf(fi_rotate::EReason(i)));
    }
    expectSame(onPage("REASONS"), rowsBelow("REASONS", 1), "host/account.cpp", known);
    expectSame(kSelectSchema,
               choicesOf(kSelectSchema, "/properties/backups/items/properties/reason/properties/name/enum"),
               "host/account.cpp", known);
}

TEST(Docs, PageAndSchemaListEveryState) {
    const Words known(fi_rotate::kStateWords.begin(), fi_rotate::kStateWords.end());
    expectSame(onPage("SELECT"), termsBelow("SELECT"), "host/outcome.h", known);
    expectSame(kSelectSchema, choicesOf(kSelectSchema, "/properties/backups/items/properties/state/enum"),
               "host/outcome.h", known);
}

TEST(Docs, SchemaListsEveryDayOfTheWeek) {
    const std::string schema = "docs/schema/fi-rotate-simulate.json";
    expectSame(schema, choicesOf(schema, "/properties/exclude_weekday/enum"), "cli/base/calendar.h",
               Words(fi_rotate::kWeekdays.begin(), fi_rotate::kWeekdays.end()));
}

class SubcommandDocs : public testing::Test {
protected:
    void SetUp() override {
        fi_rotate::addSubcommands(program, exitStatus);
        subcommands = program.get_subcommands([](CLI::App*) { return true; });
        ASSERT_FALSE(subcommands.empty());
    }

    int exitStatus = 0;
    CLI::App program;
    std::vector<CLI::App*> subcommands;
};

// The page has a section for each subcommand, in which options and their values have the names that they have
// in the help.
TEST_F(SubcommandDocs, PageListsEveryOption) {
    for (const CLI::App* const subcommand : subcommands) {
        const std::string name = subcommand->get_name();
        std::string heading = name;
        std::transform(name.begin(), name.end(), heading.begin(),
                       [](unsigned char each) { return std::toupper(each); });
        Words known;
        for (const fi_rotate::SOption& option : fi_rotate::optionsOf(*subcommand)) {
            known.push_back(option.name + (option.value.empty() ? "" : " " + option.value));
            EXPECT_NE(subcommand->help().find(known.back()), std::string::npos)
                << known.back() << " of " << name;
        }
        expectSame(onPage(heading), optionsBelow(heading), "fi-rotate " + name + " --help", known);
    }
}

TEST_F(SubcommandDocs, PageAndHelpNameEverySchema) {
    Words known{"a request | fi-rotate-request.json"};
    for (const CLI::App* const subcommand : subcommands) {
        const std::string schema = "fi-rotate-" + subcommand->get_name() + ".json";
        known.push_back(subcommand->get_name() + " --json | " + schema);
        EXPECT_NE(subcommand->get_footer().find(schema), std::string::npos)
            << "fi-rotate " << subcommand->get_name() << " --help does not name " << schema;
    }
    expectSame(onPage("JSON"), rowsBelow("JSON", 2), "fi-rotate", known);
}

}  // namespace
