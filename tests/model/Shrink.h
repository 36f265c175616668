#pragma once

#include <functional>
#include <string>

#include "tests/model/Call.h"
#include "tests/model/Comparison.h"

namespace fi_model {

using Keeps = std::function<bool(const SCall&)>;

// Makes the call as small as possible by removing backups, elements, configurations and characters, such that
// `keeps` stays true. `keeps(call)` must be true.
SCall shrink(SCall call, const Keeps& keeps);

// The call as text, with everything that is needed to make it again in a test.
std::string describe(const SCall& call);

// For a call on which model and subject differ: shrinks it, and describes it with the difference.
std::string explainDifference(const SCall& call, const Subject& subject);

}  // namespace fi_model
