#pragma once

#include <cstddef>

// Records all blocks that operator new allocates in this program. The library and those under it find the
// program's operator new before that of the C++ runtime, so that every block is recorded.
namespace fi_test {

void startRecording();
void stopRecording();

// Blocks allocated since the last startRecording, freed or not.
std::size_t recordedAllocations();

// Blocks allocated while recording and not freed since. The ledger points to them, so that a leak checker
// does not report them.
std::size_t blocksLeft();
void releaseBlocksLeft();

}  // namespace fi_test
