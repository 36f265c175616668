#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include <fmt/color.h>

// Texts in aligned columns.
namespace fi_rotate {

struct SCell {
    std::string text;
    fmt::text_style style;
};
using Row = std::vector<SCell>;

// The text of the cell, in its style if there is `colour`.
std::string styled(const SCell& cell, bool colour);

Row toRow(std::initializer_list<std::string> texts, fmt::text_style style = {});

// A line for each row; columns are as wide as their longest text. All rows have as many cells as the first.
// Where lines would be longer than `width` columns, the widest cells are cut, if that leaves something to be
// read of them.
std::string toTable(std::vector<Row> rows, std::size_t width, bool colour);

// The same without cutting anything: where lines would be too long, each row becomes some lines, its first
// cell and below it the others behind the headings in the first row.
std::string toTableOrLists(const std::vector<Row>& rows, std::size_t width, bool colour);

// Columns on a terminal.
std::size_t displayWidth(const std::string& text);

// `text`, or as much of its start and its end as leaves room for an ellipsis between them within `width`, at
// least 1, columns: names of one kind mostly differ at the end.
std::string cutTo(const std::string& text, std::size_t width);

}  // namespace fi_rotate
