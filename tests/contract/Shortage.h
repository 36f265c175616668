#pragma once

#include <cstddef>
#include <functional>

// Makes allocations of this program fail, those in its libraries included. What else is linked into the
// program decides which can fail: those through operator new, or all through malloc.
namespace fi_test {

enum class EShortage { kOfOneBlock, kLasting };

// Starts to count allocations from 1, and makes that of this number fail, and all after it when the shortage
// lasts. With the number 0 none fails.
void startShortage(EShortage kind, std::size_t number);
void endShortage();

// Since the last start: how many allocations were made, whether one failed, and how many of the blocks that
// were allocated before the end are not freed yet.
std::size_t allocationsSinceStart();
bool hasBeenShort();
std::size_t blocksLeftByShortage();

// The progress of a test that makes each allocation of a call fail in turn, shared with the processes in
// which the calls run.
struct SShortageProgress {
    // The next allocation to fail.
    std::size_t number = 1;
    // Whether the call has fewer allocations than `number`, so that all have been tried.
    bool isFinished = false;
    std::size_t survived = 0;
    // Shortages after which no call works in that process any more.
    std::size_t lost = 0;
    // Shortages that left the XML library half set up until the next call.
    std::size_t halfSetUps = 0;
    // What went wrong, if anything did.
    char fault[128] = {};
};

// Runs `step` in a process of its own, from the allocation `first` on. When it returns before it is finished,
// it is run in another process from the next allocation on. Expects that no process crashes, that there is no
// fault, and that some shortage was survived.
SShortageProgress expectEachSurvives(std::size_t first, const std::function<void(SShortageProgress&)>& step);

}  // namespace fi_test
