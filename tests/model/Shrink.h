#pragma once

#include <functional>
#include <string>

#include "tests/model/Call.h"
#include "tests/model/Comparison.h"

namespace fi_model {

using Keeps = std::function<bool(const SCall&)>;

// The smallest call to be found by leaving out backups, elements, configurations and characters
// for which `keeps` still holds. It holds for the call itself.
SCall shrink(SCall call, const Keeps& keeps);

// The call with everything that is needed to make it again in a test.
std::string describe(const SCall& call);

// A call on which model and subject differ: shrunk, described, and with the difference that is left.
std::string explainDifference(const SCall& call, const Subject& subject);

}  // namespace fi_model
