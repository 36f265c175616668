// Many calls in one process need no more memory and no more descriptors than few.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

namespace fi_test {
namespace {

long residentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, 6, "VmRSS:") == 0) {
            return std::atol(line.c_str() + 6);
        }
    }
    return 0;
}

std::ptrdiff_t descriptors() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

// scripts/soak asks for more.
int callCount() {
    const char* const asked = std::getenv("FI_ROTATION_CALLS");
    return asked == nullptr ? 1000 : std::atoi(asked);
}

class CCeiling : public CContractTest {
protected:
    std::string holder(const std::string& name, const std::string& timeStamp,
                       const std::string& further) const {
        return write(name, toXml(backup(timeStamp, {{"encA##lun1", further}})));
    }

    void makeCalls(int count) const {
        const char* const files[] = {old.c_str(), recent.c_str(), malformed.c_str()};
        for (int i = 0; i < count; ++i) {
            std::int32_t flags[] = {0, 0, 0};
            char* result = nullptr;
            try {
                // Every fourth call ends in an exception.
                entryPoint()(files, "encA##lun1;snap1;snap2", flags, i % 4 == 0 ? 3 : 2, &result);
            } catch (const CFiUdidException&) {
                ++exceptions;
            }
            selections += result != nullptr ? 1 : 0;
            std::free(result);
        }
    }

    const std::string old = holder("old.xml", "1", "encA##snap1");
    const std::string recent = holder("recent.xml", "2", "encA##snap2");
    const std::string malformed = write("bad.xml", "<Node><objid>" + udid("encA##lun1") + "</objid></Node>");
    mutable int exceptions = 0;
    mutable int selections = 0;
};

TEST_F(CCeiling, ManyCallsTakeNoMoreMemoryAndDescriptorsThanFew) {
    const int count = callCount();
    // First, some calls until the libraries under ours have allocated what they keep, and the C library's
    // heap has its usual size.
    makeCalls(200);
    const long memoryBefore = residentKilobytes();
    const std::ptrdiff_t descriptorsBefore = descriptors();
    makeCalls(count);
    const long growth = residentKilobytes() - memoryBefore;
    std::printf("%d calls: resident memory %ld kB before, %+ld kB\n", count, memoryBefore, growth);
    EXPECT_EQ(descriptors(), descriptorsBefore);
    EXPECT_EQ(exceptions + selections, count + 200);
    // Small changes of the heap are no leak; a leak of a page in every few calls would be more than this.
    EXPECT_LT(growth, 256);
}

}  // namespace
}  // namespace fi_test
