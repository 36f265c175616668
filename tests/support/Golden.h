#pragma once

#include <string>

#include "tests/support/TraceRecorder.h"

// Complete traces spelled out in tests/contract/golden, one line a trace call: level and text. The entry of
// an operation and its exit in the next call share a line, "Entering and exiting NAME". In a text a line end
// stands as \n, a backslash as \\ and the folder of the documents as {dir}.
namespace fi_test {

// The file NAME.trace in there.
std::string goldenText(const std::string& name);

// A trace in the same form; `folder` is the folder of the documents with a slash at its end.
std::string asGoldenText(const Trace& trace, const std::string& folder);

}  // namespace fi_test
