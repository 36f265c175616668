#pragma once

#include <string>

#include "tests/support/TraceRecorder.h"

// Complete traces in tests/contract/golden, with a line for each trace call: its level and its text. Where
// the exit of an operation follows its entry, both share the line "Entering and exiting NAME". In a text, \n
// stands for a line end, \\ for a backslash and {dir} for the folder of the documents.
namespace fi_test {

// The content of the file NAME.trace in that folder.
std::string goldenText(const std::string& name);

// A trace in the same form; `folder` is the folder of the documents with a slash at its end.
std::string asGoldenText(const Trace& trace, const std::string& folder);

}  // namespace fi_test
