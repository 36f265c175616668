#pragma once

#include <cstdint>

// Returns a digest of all trace lines since it was called last. The trace facility of these programs keeps
// only the digest, but formats every line, so that the sanitizers see the line's arguments read.
std::uint64_t takeTraceDigest();
