// A first host in C++17. It decides from whole inputs or not at all, and needs no trace function.
//
//   c++ -std=c++17 safe-host.cpp $(pkg-config --cflags --libs fi_rotation_host) -o safe-host
//   ./safe-host "$(cat resource.conf)" backup-*.xml
//
// It only prints. A product takes no backup while one is invalid: a person must look at that one first.
//
// Exit status: 0 a selection was made, 1 no target may be used, 2 it could not be decided.
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <fi_rotation/host.hpp>

static std::string nameOf(std::optional<fi_rotation::EState> state) {
    if (state == fi_rotation::EState::kKept) {
        return "kept";
    }
    if (state == fi_rotation::EState::kInvalid) {
        return "invalid";
    }
    return state == fi_rotation::EState::kRotated ? "rotated" : "not loaded";
}

static int decideAndPrint(const std::string& configuration,
                          const std::vector<fi_rotation::SBackup>& backups) {
    const fi_rotation::SOutcome outcome = fi_rotation::rotate(configuration, backups);
    if (outcome.kind != fi_rotation::EOutcome::kSelected) {
        std::cerr << outcome.message << '\n';
        return outcome.kind == fi_rotation::EOutcome::kNoFreeTarget ? 1 : 2;
    }
    std::cout << "selection: " << *outcome.selection << '\n';
    for (const fi_rotation::SBackupOutcome& backup : outcome.backups) {
        std::cout << backup.file << ": " << nameOf(backup.state) << '\n';
    }
    return 0;
}

int main(int argc, char** argv) {
    // A call without documents is that of a first backup: all targets are free.
    if (argc < 3) {
        std::cerr << "usage: safe-host CONFIGURATION DOCUMENT...\n";
        return 2;
    }
    try {
        std::vector<fi_rotation::SBackup> backups;
        for (int i = 2; i < argc; ++i) {
            // A `true` behind the name excludes a backup from rotation.
            backups.push_back({argv[i]});
        }
        return decideAndPrint(argv[1], backups);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 2;
    }
}
