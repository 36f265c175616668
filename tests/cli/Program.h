#pragma once

#include <string>
#include <vector>

namespace fi_test {

struct SProgramResult {
    int exitStatus = -1;
    std::string output;
    std::string error;
};

// Runs fi-rotate with `arguments` to its end; the test fails when a signal ends it. `environment` entries
// (NAME=VALUE) are added to ours, from which NO_COLOR and TERM are taken away.
SProgramResult runFiRotate(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment = {});

// The same with `file`, which exists, as standard output; what is written there is not read back.
SProgramResult runFiRotateTo(const std::string& file, const std::vector<std::string>& arguments);

// The same with a terminal as standard output.
SProgramResult runFiRotateOnTerminal(const std::vector<std::string>& arguments,
                                     const std::vector<std::string>& environment = {});

// Whether the system has pseudo-terminals: a container may have none. Tests that need one are skipped then.
bool hasTerminals();
constexpr const char* kNoTerminals = "no pseudo-terminals here";

// What a file holds; nothing when it is not there.
std::string contentOf(const std::string& file);

// The path of a file in the examples.
std::string example(const std::string& name);

// Paths of the eight example backups, oldest first.
std::vector<std::string> exampleBackups();

}  // namespace fi_test
