#include "cli/base/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <system_error>

#include <fmt/format.h>

#include "cli/base/file.h"

namespace fi_rotate {
namespace {

// Global, because a signal handler cannot be given an object.
volatile std::sig_atomic_t noted = 0;

extern "C" void noteSignal(int signal) {
    noted = signal;
}

constexpr std::chrono::milliseconds kFirst{1000};
constexpr std::chrono::milliseconds kBetween{100};
constexpr std::size_t kBarWidth = 30;

// Flushes first, so that nothing that was written before is lost.
int duplicateStandardOutput() {
    std::fflush(stdout);
    return dup(STDOUT_FILENO);
}

}  // namespace

std::size_t widthOfTerminal(int descriptor) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : kUsual;
}

std::size_t widthOfOutput() {
    return isatty(STDOUT_FILENO) == 1 ? widthOfTerminal(STDOUT_FILENO)
                                      : std::numeric_limits<std::size_t>::max();
}

CInterrupt::CInterrupt() {
    noted = 0;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        sigaction(signal, nullptr, &saved[signal]);
        // Keep signals ignored that were ignored at start (nohup).
        if (saved[signal].sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

CInterrupt::~CInterrupt() {
    for (const auto& [signal, action] : saved) {
        sigaction(signal, &action, nullptr);
    }
}

std::optional<int> CInterrupt::signal() const {
    return noted == 0 ? std::nullopt : std::optional<int>(noted);
}

std::string timeLeft(std::chrono::duration<double> elapsed, std::size_t done, std::size_t all) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    if (done == 0) {
        return "";
    }
    const double rest = static_cast<double>(all - std::min(done, all)) / static_cast<double>(done);
    const auto seconds = static_cast<std::int64_t>(std::ceil(elapsed.count() * rest));
    if (seconds < kMinute) {
        return fmt::format("{} s left", seconds);
    }
    const std::int64_t minutes = seconds % kHour / kMinute;
    return seconds < kHour ? fmt::format("{} min left", minutes)
                           : fmt::format("{} h {} min left", seconds / kHour, minutes);
}

CProgress::CProgress()
    : isTerminal(isatty(STDERR_FILENO) == 1), next(Clock::now() + kFirst), begin(Clock::now()) {}

CProgress::~CProgress() {
    if (shown != 0) {
        fmt::print(stderr, "\r{:{}}\r", "", shown);
    }
}

void CProgress::show(std::size_t done, std::size_t all, const std::string& what) {
    const Clock::time_point now = Clock::now();
    if (done < lastDone) {
        begin = now;
    }
    lastDone = done;
    if (!isTerminal || now < next) {
        return;
    }
    next = now + kBetween;
    const std::size_t filled = all == 0 ? 0 : kBarWidth * std::min(done, all) / all;
    std::string line = fmt::format("[{}{}] {} of {} {}", std::string(filled, '#'),
                                   std::string(kBarWidth - filled, ' '), done, all, what);
    if (const std::string left = timeLeft(now - begin, done, all); !left.empty()) {
        line += ", " + left;
    }
    // A line that wraps onto the next could not be overwritten.
    line.resize(std::min(line.size(), widthOfTerminal(STDERR_FILENO) - 1));
    // The padding overwrites the rest of a longer bar.
    fmt::print(stderr, "\r{:<{}}", line, shown);
    std::fflush(stderr);
    shown = std::max(shown, line.size());
}

CMutedStandardOutput::CMutedStandardOutput() : saved(duplicateStandardOutput()) {
    const CFile nowhere(std::fopen("/dev/null", "we"));
    if (saved == -1 || nowhere == nullptr || dup2(fileno(nowhere.get()), STDOUT_FILENO) == -1) {
        throw std::system_error(errno, std::generic_category(), "cannot redirect standard output");
    }
}

CMutedStandardOutput::~CMutedStandardOutput() {
    std::fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
}

}  // namespace fi_rotate
