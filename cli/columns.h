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

Row toRow(std::initializer_list<std::string> texts, fmt::text_style style = {});

// A line for each row; columns are as wide as their longest text. All rows have as many cells as the first.
std::string toTable(const std::vector<Row>& rows, bool colour);

// Columns on a terminal.
std::size_t displayWidth(const std::string& text);

// `text`, or as much of its start as leaves room for an ellipsis within `width`, at least 1, columns.
std::string cutTo(const std::string& text, std::size_t width);

}  // namespace fi_rotate
