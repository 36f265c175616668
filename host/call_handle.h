#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/safe_call.h"
#include "host/trace_text.h"

// What a host has a pointer to.
struct fi_rotation_call {
    fi_rotate::SCall inputs;
    fi_rotate::SSafety safety;
    bool wantsReasons = false;
    std::int32_t traceLevel = fi_rotate::kProgressLevel;
    fi_rotation_trace_fn traceFunction = nullptr;
    void* traceUser = nullptr;
    // A backup could not be added.
    bool isIncomplete = false;

    std::atomic<bool> isRunning = false;
    // It was freed while it ran.
    bool isAbandoned = false;

    fi_rotate::SDecision decision;
    // By backup.
    std::vector<std::uint32_t> problemsOfBackups;
    std::vector<std::string> reasonTexts;
    // What decision.message says, or a text that needs no memory.
    const char* message = "the call was not run";
};
