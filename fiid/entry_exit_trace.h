#pragma once

#include "common/mofi_tracelog.h"

// The entry and exit lines of the classes in this folder. They are plain calls, not the two ends of
// a scope: some operations trace more than one exit, and one left by an exception traces none.
inline void traceEntering(const char* operation) {
    mofi_tracelog(kTraceProgress, "Entering %s\n", operation);
}

inline void traceExiting(const char* operation) {
    mofi_tracelog(kTraceProgress, "Exiting %s\n", operation);
}
