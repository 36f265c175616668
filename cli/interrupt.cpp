#include "cli/interrupt.h"

namespace fi_rotate {
namespace {

// A signal handler has no argument of ours.
volatile std::sig_atomic_t noted = 0;

extern "C" void noteSignal(int signal) {
    noted = signal;
}

}  // namespace

CInterrupt::CInterrupt() {
    noted = 0;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART;
        sigaction(signal, nullptr, &saved[signal]);
        // Who started the program with a signal ignored (nohup) wants it so.
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

}  // namespace fi_rotate
