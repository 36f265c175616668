#include "cli/base/columns.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include <fmt/format.h>

namespace fi_rotate {
namespace {

constexpr std::string_view kGap = "  ";

std::vector<std::size_t> columnWidths(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i].text));
        }
    }
    return widths;
}

std::size_t lineWidth(const std::vector<std::size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), kGap.size() * widths.size());
}

// Makes the widest column narrower, one character at a time, while the line is too long.
std::vector<std::size_t> fitted(std::vector<std::size_t> widths, std::size_t width) {
    constexpr std::size_t kNarrowest = 8;
    std::size_t line = lineWidth(widths);
    while (line > width) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= kNarrowest) {
            break;
        }
        --*widest;
        --line;
    }
    return widths;
}

std::string toLine(const Row& row, const std::vector<std::size_t>& widths, bool colour) {
    std::string line;
    std::size_t padding = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        // Padding is written before the next cell, so that no line ends in spaces.
        line.append(padding, ' ').append(kGap);
        line += styled(row[i], colour);
        padding = widths[i] - displayWidth(row[i].text);
    }
    return line + "\n";
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::vector<std::string> charactersOf(const std::string& text) {
    std::vector<std::string> characters;
    for (const char byte : text) {
        if (characters.empty() || !continuesCharacter(byte)) {
            characters.emplace_back();
        }
        characters.back() += byte;
    }
    return characters;
}

}  // namespace

std::string styled(const SCell& cell, bool colour) {
    return colour ? fmt::format(cell.style, "{}", cell.text) : cell.text;
}

Row toRow(std::initializer_list<std::string> texts, fmt::text_style style) {
    Row row;
    for (const std::string& text : texts) {
        row.push_back({text, style});
    }
    return row;
}

std::string toTable(std::vector<Row> rows, std::size_t width, bool colour) {
    const std::vector<std::size_t> widths = fitted(columnWidths(rows), width);
    std::string table;
    for (Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i].text = cutTo(row[i].text, widths[i]);
        }
        table += toLine(row, widths, colour);
    }
    return table;
}

std::string toTableOrLists(const std::vector<Row>& rows, std::size_t width, bool colour) {
    if (lineWidth(columnWidths(rows)) <= width) {
        return toTable(rows, width, colour);
    }
    std::string lists;
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        lists += fmt::format("{}{}\n", kGap, styled(row->front(), colour));
        for (std::size_t i = 1; i < row->size(); ++i) {
            lists += fmt::format("{0}{0}{1}: {2}\n", kGap, rows.front()[i].text, styled((*row)[i], colour));
        }
    }
    return lists;
}

// The formatting library pads a text to a width in columns, so the number of blanks that it adds shows how
// many columns it counts for the text.
std::size_t displayWidth(const std::string& text) {
    const std::size_t padded = fmt::formatted_size("{:<{}}", text, text.size());
    return 2 * text.size() - padded;
}

std::string cutTo(const std::string& text, std::size_t width) {
    if (displayWidth(text) <= width) {
        return text;
    }
    const std::vector<std::string> characters = charactersOf(text);
    std::string start;
    std::string end;
    std::size_t room = width - 1;
    // Takes characters from the end and from the start in turn, until the next one does not fit.
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const bool isEnd = i % 2 == 0;
        const std::string& next = isEnd ? characters[characters.size() - 1 - i / 2] : characters[i / 2];
        const std::size_t wide = displayWidth(next);
        if (wide > room) {
            break;
        }
        room -= wide;
        if (isEnd) {
            end.insert(0, next);
        } else {
            start += next;
        }
    }
    return start + "…" + end;
}

}  // namespace fi_rotate
