#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/safe_call.h"
#include "host/trace_text.h"

// The call that a host of the host library has a pointer to.
struct fi_rotation_call {
    fi_rotate::SCall inputs;
    fi_rotate::SSafety safety;
    bool wantsReasons = false;
    std::int32_t traceLevel = fi_rotate::kProgressLevel;
    fi_rotation_trace_fn traceFunction = nullptr;
    void* traceUser = nullptr;
    // Whether a backup could not be added; no run decides then.
    bool isIncomplete = false;

    std::atomic<bool> isRunning = false;
    // Whether it was freed while it ran; it is deleted at the end of the run.
    bool isAbandoned = false;

    fi_rotate::SDecision decision;
    // For each backup, the sum of its problems.
    std::vector<std::uint32_t> problemsOfBackups;
    std::vector<std::string> reasonTexts;
    // Points into decision.message, or to a literal, for which no memory is needed. It is set anew whenever
    // `decision` changes.
    const char* message = "the call was not run yet";
};
