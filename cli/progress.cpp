#include "cli/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

#include "cli/terminal.h"

namespace fi_rotate {
namespace {

constexpr std::chrono::milliseconds kFirst{1000};
constexpr std::chrono::milliseconds kBetween{100};
constexpr std::size_t kBarWidth = 30;

}  // namespace

CProgress::CProgress() : isTerminal(isatty(STDERR_FILENO) == 1), next(Clock::now() + kFirst) {}

CProgress::~CProgress() {
    if (shown != 0) {
        fmt::print(stderr, "\r{:{}}\r", "", shown);
    }
}

void CProgress::show(std::size_t done, std::size_t all, const std::string& what) {
    if (!isTerminal || Clock::now() < next) {
        return;
    }
    next = Clock::now() + kBetween;
    const std::size_t filled = all == 0 ? 0 : kBarWidth * std::min(done, all) / all;
    std::string line = fmt::format("[{}{}] {} of {} {}", std::string(filled, '#'),
                                   std::string(kBarWidth - filled, ' '), done, all, what);
    // A line that wraps could not be written over.
    line.resize(std::min(line.size(), widthOfTerminal(STDERR_FILENO) - 1));
    // What the bar before it had more is wiped away.
    fmt::print(stderr, "\r{:<{}}", line, shown);
    std::fflush(stderr);
    shown = std::max(shown, line.size());
}

}  // namespace fi_rotate
