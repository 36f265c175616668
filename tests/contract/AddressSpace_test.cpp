// A real shortage of memory: a process that may not map more memory, from its first call on.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Library.h"
#include "tests/support/TemporaryFolder.h"

extern "C" __attribute__((visibility("default"))) void mofi_tracelog(int /*level*/, const char* /*format*/,
                                                                     ...) {}

namespace fi_test {
namespace {

constexpr std::size_t kKiB = 1024;
constexpr std::size_t kMiB = 1024 * kKiB;

// How a process ended in which memory ran short during the first call.
enum EEnd { kAllWell = 0, kShortAndWell = 1, kLaterCallFails = 2, kUnexpected = 3 };

std::size_t mappedBytes() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

bool isDecided(const std::string& file) {
    const char* const files[] = {file.c_str()};
    std::int32_t flag = 0;
    char* result = nullptr;
    try {
        if (entryPoint()(files, "encA##lun1;snap1;snap2", &flag, 1, &result) != 0) {
            return false;
        }
    } catch (...) {
        return false;
    }
    const bool isExpected = std::string(result) == "[encA##lun1;encA##snap2]";
    std::free(result);
    return isExpected;
}

void limitAddressSpace(rlim_t bytes) {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_AS, &limit);
}

// What a process has before it runs short.
struct SMemory {
    // What it can map.
    std::size_t room = 0;
    // At the end of its heap.
    std::size_t heap = 0;
};

void fillHeapUpTo(std::size_t rest) {
    const void* const end = sbrk(0);
    while (sbrk(0) == end) {
        static_cast<void>(operator new(64));
    }
    const char* const last = static_cast<const char*>(sbrk(0)) - rest;
    while (static_cast<const char*>(operator new(64)) < last) {
    }
}

EEnd callWithin(const SMemory& memory, const std::string& file) {
    fillHeapUpTo(memory.heap);
    limitAddressSpace(mappedBytes() + memory.room);
    const bool isFirstDecided = isDecided(file);
    limitAddressSpace(RLIM_INFINITY);
    if (!isDecided(file)) {
        return kLaterCallFails;
    }
    return isFirstDecided ? kAllWell : kShortAndWell;
}

EEnd callInAProcessOfItsOwn(const SMemory& memory, const std::string& file) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        _exit(callWithin(memory, file));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? static_cast<EEnd>(WEXITSTATUS(status)) : kUnexpected;
}

TEST(CAddressSpace, LaterCallsWorkAfterACallForWhichItWasTooSmall) {
    const CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", toXml(backup("1", {{"encA##lun1", "encA##snap1"}})));
    // The library is loaded before memory is short.
    ASSERT_NE(entryPoint(), nullptr);
    std::size_t ends[4] = {};
    const auto tryOut = [&](const SMemory& memory) {
        const EEnd end = callInAProcessOfItsOwn(memory, file);
        ++ends[end];
        EXPECT_LE(end, kShortAndWell)
            << "with " << memory.heap << " bytes of heap and " << memory.room << " that can be mapped";
    };
    for (std::size_t room = 0; room < 10 * kMiB; room += 16 * kKiB) {
        tryOut({room, kKiB});
    }
    // What the XML library takes while it is set up comes out of the heap when no more can be mapped.
    for (std::size_t room = kMiB; room < 3 * kMiB / 2; room += 36 * kKiB) {
        for (std::size_t heap = 64; heap < 128 * kKiB; heap += 4 * kKiB) {
            tryOut({room, heap});
        }
    }
    std::printf("%zu processes were short of memory and recovered, %zu were not short\n", ends[kShortAndWell],
                ends[kAllWell]);
    EXPECT_GT(ends[kShortAndWell], 0U);
    EXPECT_GT(ends[kAllWell], 0U);
}

}  // namespace
}  // namespace fi_test
