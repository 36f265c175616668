#pragma once

#include <functional>
#include <string>

#include "host/call.h"
#include "host/outcome.h"
#include "host/trace_text.h"

namespace fi_rotate {

// Receives a line of the library's trace: its level and the text without its line end.
using TraceSink = std::function<void(int level, const std::string& text)>;

// What a call is to tell besides its selection, its states and what became of the documents.
struct SWishes {
    // An account, which takes a look at every line of the trace.
    bool account = false;
    // Its configurations also when there are no backups, by a call with a list of no entries: the library
    // traces no more than a selection when it is told that there is no list.
    bool configurationsOfFirstBackup = false;
    // Lines up to this level go to the sink; no line is formatted that nobody reads.
    int traceLevel = kProgressLevel;
    TraceSink trace;
};

// Runs the call. Whatever exception leaves the library is part of the outcome. Calls must not overlap.
SOutcome runCall(const SCall& call, const SWishes& wishes);

}  // namespace fi_rotate
