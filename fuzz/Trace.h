#pragma once

#include <cstdint>

// The trace facility of these programs formats every line, so that what a line takes as its arguments is
// read, and keeps only a digest. Returns that of all lines since the last call.
std::uint64_t takeTraceDigest();
