#pragma once

#include <cstdio>
#include <vector>

#include "host/call.h"
#include "host/outcome.h"

namespace fi_rotate {

// Runs the call. While it runs, the library's trace goes to `traceOutputs` (borrowed), and what the library
// prints on standard output goes to standard error, so that standard output stays the caller's. Whatever
// exception leaves the library is part of the outcome. With `wantsAccount` the outcome holds an account too,
// which takes the formatting of every line.
SOutcome runCall(const SCall& call, const std::vector<std::FILE*>& traceOutputs, bool wantsAccount);

}  // namespace fi_rotate
