#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "cli/check/configuration_reading.h"

// What was probably meant where the library reads a configuration in another way than it looks.
namespace fi_rotate {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kBlanks = " \t";

// `configuration` without the byte-order mark, which is in the name of its first enclosure.
SConfiguration withoutMark(const SConfiguration& configuration);

// `configuration` with a semicolon in place of each comma, and without blanks around names.
SConfiguration withoutCommas(const SConfiguration& configuration);

// Where, in what is written for the target at `position`, a blank probably stands for a line end, so that the
// first target of another configuration, with its enclosure, is behind it; npos when there is none.
// Enclosures may be called so that a blank is in the name: then what is before the blank does not look like a
// target.
std::size_t lostLineEnd(const SConfiguration& configuration, std::size_t position);

// The configurations that `configuration` is with a line end in place of each blank that probably stands for
// one, and without blanks around names.
std::vector<SConfiguration> withLineEnds(const SConfiguration& configuration);

}  // namespace fi_rotate
