#pragma once

namespace fi_rotate {

// Runs fi-rotate with a command line and returns its exit status.
int runProgram(int argc, char** argv) noexcept;

// Prints the file `script`, the completion of a shell, with its line @WORDS@ replaced by the words that
// fi-rotate knows. Prints an error and returns false when it cannot.
bool printCompletionOrReport(const char* script) noexcept;

}  // namespace fi_rotate
