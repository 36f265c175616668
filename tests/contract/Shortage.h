#pragma once

#include <cstddef>
#include <functional>

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

// How far a test has come that makes each allocation of a call fail in turn, shared with the processes in
// which the calls run.
struct SShortageProgress {
    // The next allocation to fail.
    std::size_t number = 1;
    // No allocation has this number any more.
    bool isFinished = false;
    std::size_t survived = 0;
    // Shortages behind which no call works in that process.
    std::size_t lost = 0;
    // Those that left the XML library half set up until the next call.
    std::size_t halfSetUps = 0;
    // What went wrong, if anything did.
    char fault[128] = {};
};

// Runs `step` in processes of its own, from the allocation `first` on, until it is finished. A step that
// returns earlier is followed by one for the next allocation. Expects that no process dies, that there is no
// fault and that something was survived.
SShortageProgress expectEachSurvives(std::size_t first, const std::function<void(SShortageProgress&)>& step);

}  // namespace fi_test
