#pragma once

#include <chrono>
#include <csignal>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace fi_rotate {

// How many columns the terminal `descriptor` has; 80 when it is not a terminal or its width is not known.
std::size_t widthOfTerminal(int descriptor);

// How many columns a line on standard output may have: those of the terminal; no limit in a file.
std::size_t widthOfOutput();

// While one exists, a signal that asks the program to end (Ctrl-C, a closed terminal, kill) is only recorded,
// so that the work can stop between two rounds and show what is finished. At most one exists at a time.
class CInterrupt {
public:
    CInterrupt();
    ~CInterrupt();
    CInterrupt(const CInterrupt&) = delete;
    CInterrupt& operator=(const CInterrupt&) = delete;

    // The signal that was received, if any.
    [[nodiscard]] std::optional<int> signal() const;

private:
    std::map<int, struct sigaction> saved;
};

// How long the remaining steps will take at the speed of the steps that were done in `elapsed`, in words: "40
// s left", "12 min left", "3 h 5 min left". Empty when no step is done.
std::string timeLeft(std::chrono::duration<double> elapsed, std::size_t done, std::size_t all);

// Shows a bar with the time left on standard error, if that is a terminal and the work takes more than a
// second. The destructor removes the bar.
class CProgress {
public:
    CProgress();
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    // Cheap enough to be called for every step. When `done` is less than before, other work has begun, and
    // the time left is measured from there.
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

// While one exists, what is written to standard output is dropped: the library writes a line of its own there
// for a document that it cannot open, and fi-rotate reports that in its own words.
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
