#include "resource/SFiResourceList.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(SFiResourceList, StartsEmptyAndAvailable) {
    const SFiResourceList list;
    EXPECT_EQ(list.device, "");
    EXPECT_EQ(list.enclosure, "");
    EXPECT_EQ(list.state, 0);
    EXPECT_TRUE(list.resources.empty());

    const SFiResource resource;
    EXPECT_EQ(resource.device, "");
    EXPECT_EQ(resource.enclosure, "");
    EXPECT_EQ(resource.state, 0);
}

TEST(SFiResourceList, CopyOfASetSharesNothingWithIt) {
    std::vector<SFiResourceList> set{{"lun1", "encA", 0, {{"snap1", "encA", 0}}}};
    std::vector<SFiResourceList> copy = set;
    copy[0].state = 1;
    copy[0].resources[0].state = 2;
    copy[0].resources[0].device = "other";
    EXPECT_EQ(set[0].state, 0);
    EXPECT_EQ(set[0].resources[0].state, 0);
    EXPECT_EQ(set[0].resources[0].device, "snap1");
}

TEST(EFiResourceState, NamesEveryValue) {
    const struct {
        std::int32_t state;
        const char* name;
    } rows[] = {
        {0, "Available"}, {1, "Used"},    {2, "Invalid"},          {3, "Unknown"},
        {-1, "Unknown"},  {4, "Unknown"}, {2147483647, "Unknown"},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(resourceStateName(row.state), row.name) << row.state;
    }
}

TEST(EFiResourceState, HasTheValuesThatRecordsHold) {
    EXPECT_EQ(kResourceAvailable, 0);
    EXPECT_EQ(kResourceUsed, 1);
    EXPECT_EQ(kResourceInvalid, 2);
}

}  // namespace
