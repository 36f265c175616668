#pragma once

namespace fi_rotate {

// fi-rotate as a whole: the exit status of a command line.
int runProgram(int argc, char** argv) noexcept;

// Prints `script`, the completion of a shell, with the words that fi-rotate knows in the place of its line
// @WORDS@. Whether it could; if not, a message says why.
bool printCompletion(const char* script) noexcept;

}  // namespace fi_rotate
