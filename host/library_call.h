#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "host/outcome.h"

namespace fi_rotate {

// The arguments of one call.
struct SCall {
    // Without NUL bytes: the library reads it as a C string.
    std::string configuration;
    // `file` and `flagWord` of each earlier backup.
    std::vector<SBackup> backups;
};

// Runs the call. While it runs, the library's trace goes to `traceOutputs` (borrowed), and what the
// library prints on standard output goes to standard error, so that standard output stays the caller's.
// Whatever exception leaves the library is part of the outcome; time stamps, which take a reading of their
// own, are not. With `wantsAccount` the outcome holds an account too, which takes the formatting of every
// line.
SOutcome runCall(SCall call, const std::vector<std::FILE*>& traceOutputs, bool wantsAccount);

}  // namespace fi_rotate
