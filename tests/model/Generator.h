#pragma once

#include <cstdint>

#include "tests/model/Call.h"
#include "tests/model/Random.h"

namespace fi_model {

// Ordinary calls, and among them everything that a caller, a configuration or a document can get wrong.
SCall makeCall(CRandom& random);

// The call that belongs to a seed.
SCall makeCall(std::uint64_t seed);

}  // namespace fi_model
