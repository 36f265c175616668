#pragma once

#include <functional>
#include <string>

#include "host/call.h"
#include "host/outcome.h"
#include "host/trace_text.h"

namespace fi_rotate {

// Receives a line of the library's trace: its level and the text without its line end.
using TraceSink = std::function<void(int level, const std::string& text)>;

// What a call is to tell besides its selection, its states and what was found in the documents.
struct SWishes {
    // An account. It takes time, because every line of the trace must be looked at.
    bool account = false;
    // The configurations even when there are no backups. With a size of 0 the library does not trace them, so
    // it is then given the size -1, which stands for a list without entries.
    bool configurationsOfFirstBackup = false;
    // Lines up to this level go to the sink.
    int traceLevel = kProgressLevel;
    TraceSink trace;
};

// Runs the call. An exception that leaves the library becomes part of the outcome. Calls must not overlap.
SOutcome runCall(const SCall& call, const SWishes& wishes);

}  // namespace fi_rotate
