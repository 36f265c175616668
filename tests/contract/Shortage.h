#pragma once

#include <cstddef>

// Makes allocations of this program fail, those in the libraries under it included. The program that this is
// linked into decides which ones can: those through operator new, or all that come from malloc.
namespace fi_test {

enum class EShortage { kOfOneBlock, kLasting };

// From here on allocations are counted, and the one of this number, from 1, fails; all after it too when the
// shortage lasts. No allocation has the number 0.
void startShortage(EShortage kind, std::size_t number);
void endShortage();

// Since the last start: the allocations, whether one failed, and the blocks that were allocated until the end
// and are not freed yet.
std::size_t allocationsSinceStart();
bool hasBeenShort();
std::size_t blocksLeftByShortage();

}  // namespace fi_test
