#include "driver/CFiHandOver.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Flags = std::vector<std::int32_t>;

TEST(CFiHandOver, GivesAtOnce) {
    char former = 'f';
    char* target = &former;
    Flags flags{4, 5};
    CFiHandOver handOver(&target, flags.data(), flags.size());
    handOver.give(duplicateForCaller("selection"));
    EXPECT_STREQ(target, "selection");
    EXPECT_EQ(flags, (Flags{4, 5}));
    handOver.give(Flags{0, 2});
    EXPECT_EQ(flags, (Flags{0, 2}));
}

TEST(CFiHandOver, LeavesWhatIsKept) {
    char former = 'f';
    char* target = &former;
    Flags flags{4, 5};
    {
        CFiHandOver handOver(&target, flags.data(), flags.size());
        handOver.give(duplicateForCaller("selection"));
        handOver.give(Flags{0, 2});
        handOver.keep();
    }
    EXPECT_STREQ(target, "selection");
    EXPECT_EQ(flags, (Flags{0, 2}));
    std::free(target);
}

TEST(CFiHandOver, TakesBackWhatIsNotKept) {
    char former = 'f';
    char* target = &former;
    Flags flags{4, 5};
    {
        CFiHandOver handOver(&target, flags.data(), flags.size());
        handOver.give(duplicateForCaller("selection"));
        handOver.give(Flags{0, 2});
    }
    EXPECT_EQ(target, &former);
    EXPECT_EQ(flags, (Flags{4, 5}));
}

TEST(CFiHandOver, TakesNothingBackThatWasNotGiven) {
    char former = 'f';
    char* target = &former;
    Flags flags{4};
    { const CFiHandOver handOver(&target, flags.data(), flags.size()); }
    EXPECT_EQ(target, &former);
    EXPECT_EQ(flags, Flags{4});
}

}  // namespace
