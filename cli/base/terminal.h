#pragma once

#include <chrono>
#include <csignal>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace fi_rotate {

// Columns of the terminal that `descriptor` is; 80 when it is none or does not tell.
std::size_t widthOfTerminal(int descriptor);

// Columns that a line on standard output should keep to: those of the terminal; as many as it needs in a
// file.
std::size_t widthOfOutput();

// From construction to destruction a signal that asks the program to end (Ctrl-C, a closed terminal, kill) is
// only noted, so that the work can stop in good order. At most one exists at a time.
class CInterrupt {
public:
    CInterrupt();
    ~CInterrupt();
    CInterrupt(const CInterrupt&) = delete;
    CInterrupt& operator=(const CInterrupt&) = delete;

    // The signal that came.
    [[nodiscard]] std::optional<int> signal() const;

private:
    std::map<int, struct sigaction> saved;
};

// A bar on standard error, when that is a terminal and the work takes more than a second. It is wiped away in
// the end.
class CProgress {
public:
    CProgress();
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    // Cheap enough to be called for every step.
    void show(std::size_t done, std::size_t all, const std::string& what);

private:
    using Clock = std::chrono::steady_clock;

    bool isTerminal;
    Clock::time_point next;
    // Columns of the bar on the terminal.
    std::size_t shown = 0;
};

// Standard output stands for standard error from construction to destruction: the library prints a line of
// its own there, and standard output is for what was asked for.
class CStandardOutputDiversion {
public:
    // Throws std::system_error.
    CStandardOutputDiversion();
    ~CStandardOutputDiversion();
    CStandardOutputDiversion(const CStandardOutputDiversion&) = delete;
    CStandardOutputDiversion& operator=(const CStandardOutputDiversion&) = delete;

private:
    int saved;
};

}  // namespace fi_rotate
