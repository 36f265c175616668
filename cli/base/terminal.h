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

// How long the rest of the steps takes if it goes on as it did in `elapsed`, in words: "40 s left", "12 min
// left", "3 h 5 min left". Empty when no step is done.
std::string timeLeft(std::chrono::duration<double> elapsed, std::size_t done, std::size_t all);

// A bar with the time left on standard error, when that is a terminal and the work takes more than a second.
// It is wiped away in the end.
class CProgress {
public:
    CProgress();
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    // Cheap enough to be called for every step. Fewer steps done than before are those of other work.
    void show(std::size_t done, std::size_t all, const std::string& what);

private:
    using Clock = std::chrono::steady_clock;

    bool isTerminal;
    Clock::time_point next;
    Clock::time_point begin;
    std::size_t lastDone = 0;
    // Columns of the bar on the terminal.
    std::size_t shown = 0;
};

// While one exists, what is written to standard output is lost: the library writes a line of its own there for a
// document that it cannot open, and fi-rotate reports that in its own words.
class CMutedStandardOutput {
public:
    // Throws std::system_error.
    CMutedStandardOutput();
    ~CMutedStandardOutput();
    CMutedStandardOutput(const CMutedStandardOutput&) = delete;
    CMutedStandardOutput& operator=(const CMutedStandardOutput&) = delete;

private:
    int saved;
};

}  // namespace fi_rotate
