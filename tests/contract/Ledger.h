#pragma once

#include <cstddef>

// An account of all blocks that operator new gives out in this program. The library, and the libraries under
// it, find the program's operator new before the runtime's, so every block is known here.
namespace fi_test {

void startRecording();
void stopRecording();

// Blocks allocated since the last startRecording, freed or not.
std::size_t recordedAllocations();

// Blocks allocated while recording and not freed since. The ledger reaches them, so that they are no leaks
// to a leak checker.
std::size_t blocksLeft();
void releaseBlocksLeft();

}  // namespace fi_test
