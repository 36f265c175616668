#include "driver/CFiHandOver.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Flags = std::vector<std::int32_t>;

class CFiHandOverTest : public testing::Test {
protected:
    char former = 'f';
    char* target = &former;
    Flags flags{4, 5};
};

TEST_F(CFiHandOverTest, WritesAtOnce) {
    CFiHandOver handOver(&target, flags.data(), flags.size());
    handOver.writeSelection(duplicateForCaller("selection"));
    EXPECT_STREQ(target, "selection");
    EXPECT_EQ(flags, (Flags{4, 5}));
    handOver.writeFlagWords(Flags{0, 2});
    EXPECT_EQ(flags, (Flags{0, 2}));
}

TEST_F(CFiHandOverTest, LeavesCommittedOutputs) {
    {
        CFiHandOver handOver(&target, flags.data(), flags.size());
        handOver.writeSelection(duplicateForCaller("selection"));
        handOver.writeFlagWords(Flags{0, 2});
        handOver.commit();
    }
    EXPECT_STREQ(target, "selection");
    EXPECT_EQ(flags, (Flags{0, 2}));
    std::free(target);
}

TEST_F(CFiHandOverTest, TakesBackOutputsThatAreNotCommitted) {
    {
        CFiHandOver handOver(&target, flags.data(), flags.size());
        handOver.writeSelection(duplicateForCaller("selection"));
        handOver.writeFlagWords(Flags{0, 2});
    }
    EXPECT_EQ(target, &former);
    EXPECT_EQ(flags, (Flags{4, 5}));
}

TEST_F(CFiHandOverTest, LeavesOutputsThatWereNotWritten) {
    {
        // Takes back when the scope ends.
        const CFiHandOver handOver(&target, flags.data(), flags.size());
    }
    EXPECT_EQ(target, &former);
    EXPECT_EQ(flags, (Flags{4, 5}));
}

}  // namespace
