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

// A line for each row; each column is as wide as its longest text. All rows have as many cells as the first.
// When lines would be longer than `width` columns, the widest columns are cut, but not to less than eight
// characters.
std::string toTable(std::vector<Row> rows, std::size_t width, bool colour);

// The same, but nothing is cut: when lines would be too long, each row becomes several lines, first its first
// cell and then each other cell after its heading from the first row.
std::string toTableOrLists(const std::vector<Row>& rows, std::size_t width, bool colour);

// How many columns of a terminal `text` takes.
std::size_t displayWidth(const std::string& text);

// `text` in at most `width` columns, which is at least 1. A longer text is cut in the middle, with an
// ellipsis between its start and its end, because similar names mostly differ at the end.
std::string cutTo(const std::string& text, std::size_t width);

}  // namespace fi_rotate
