#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace fi_rotate {

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

}  // namespace fi_rotate
