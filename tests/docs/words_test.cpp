// What the manual page fi-rotate(1) says again of the program is what the program knows.

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "cli/base/file.h"
#include "cli/base/text.h"
#include "cli/command/exit_status.h"

namespace {

using Words = std::vector<std::string>;

constexpr const char* kPage = "docs/man/fi-rotate.1.scd";

std::string contentOf(const std::string& file) {
    const auto content = fi_rotate::readFile(std::string(FI_ROTATION_SOURCE "/") + file);
    return content.has_value() ? *content : throw std::runtime_error("cannot read " + file);
}

// A line of the page as readers see it, without the marks of emphasis.
std::string plain(std::string line) {
    const auto isMark = [](char character) { return character == '*' || character == '_'; };
    const std::size_t begin = line.find_first_not_of(" :|");
    line.erase(0, std::min(begin, line.size()));
    if (!line.empty() && isMark(line.front()) && isMark(line.back())) {
        return line.substr(1, line.size() - 2);
    }
    return line;
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

// The rows of the table below a heading, each as its first `columns` cells.
std::vector<Words> rowsBelow(const std::string& heading, std::size_t columns) {
    std::vector<Words> rows;
    for (const std::string& line : linesBelow(heading)) {
        if (fi_rotate::startsWith(line, "|  ")) {
            rows.push_back({plain(line)});
        } else if (!rows.empty() && fi_rotate::startsWith(line, ":  ") && rows.back().size() < columns) {
            rows.back().push_back(plain(line));
        }
    }
    return rows;
}

// The same, the cells of a row behind one another.
Words rowTextsBelow(const std::string& heading, std::size_t columns) {
    Words texts;
    for (const Words& row : rowsBelow(heading, columns)) {
        texts.push_back(fmt::format("{}", fmt::join(row, " | ")));
    }
    return texts;
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

TEST(Docs, PageListsEveryExitStatus) {
    Words known;
    for (const fi_rotate::SExitStatus& row : fi_rotate::kExitStatuses) {
        known.push_back(fmt::format("{} | {} | {}", row.status, row.subcommand, row.meaning));
    }
    expectSame(std::string(kPage) + ", EXIT STATUS", rowTextsBelow("EXIT STATUS", 3),
               "cli/command/exit_status.h", known);
}

}  // namespace
