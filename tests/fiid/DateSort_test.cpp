#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fiid/CFiFiidNode.h"
#include "fiid/SAscendingDateSort.h"
#include "fiid/SDescendingDateSort.h"

namespace {

using Keys = std::vector<std::string>;

template <typename Order>
Keys sorted(const Keys& keys) {
    std::vector<CFiFiidNode> nodes(keys.size());
    std::vector<CFiFiidNode*> pointers;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        nodes[i].timeStamp = keys[i];
        pointers.push_back(&nodes[i]);
    }
    std::sort(pointers.begin(), pointers.end(), Order());
    Keys result;
    for (const CFiFiidNode* node : pointers) {
        result.push_back(node->timeStamp);
    }
    return result;
}

void expectAscending(const Keys& keys, const Keys& expected) {
    EXPECT_EQ(sorted<SAscendingDateSort>(keys), expected);
    EXPECT_EQ(sorted<SDescendingDateSort>(keys), Keys(expected.rbegin(), expected.rend()));
}

TEST(DateSort, OrdersTimeStampsOfOneWidthByTime) {
    expectAscending({"20200101120000", "20191231235959"}, {"20191231235959", "20200101120000"});
}

TEST(DateSort, ComparesTextNotNumbers) {
    expectAscending({"999", "1000"}, {"1000", "999"});
}

TEST(DateSort, PrefixIsTheLesser) {
    expectAscending({"1000", "100"}, {"100", "1000"});
}

TEST(DateSort, EmptyKeyIsTheLeast) {
    expectAscending({"0", "", " "}, {"", " ", "0"});
}

TEST(DateSort, BytesAreUnsigned) {
    expectAscending({"\xC3\xA4", "z", "\x7F"}, {"z", "\x7F", "\xC3\xA4"});
}

TEST(DateSort, CaseAndWhiteSpaceCount) {
    expectAscending({"a", "B", " c", "A"}, {" c", "A", "B", "a"});
}

TEST(DateSort, EqualKeysAreTiedUnderBothRules) {
    CFiFiidNode left;
    CFiFiidNode right;
    left.timeStamp = right.timeStamp = "2026";
    left.objid = "a";
    right.objid = "b";
    EXPECT_FALSE(SAscendingDateSort()(&left, &right));
    EXPECT_FALSE(SAscendingDateSort()(&right, &left));
    EXPECT_FALSE(SDescendingDateSort()(&left, &right));
    EXPECT_FALSE(SDescendingDateSort()(&right, &left));
}

TEST(DateSort, TiedRootsStayTogetherAmongTheOthers) {
    expectAscending({"2", "1", "2", "3"}, {"1", "2", "2", "3"});
}

TEST(DateSort, NoneOrOneIsLeftAsItIs) {
    expectAscending({}, {});
    expectAscending({"7"}, {"7"});
}

TEST(DateSort, OneRuleAfterTheOtherReversesTheOrder) {
    const Keys keys{"5", "3", "9", "1", "7"};
    const Keys ascending = sorted<SAscendingDateSort>(keys);
    const Keys descending = sorted<SDescendingDateSort>(ascending);
    EXPECT_EQ(descending, Keys(ascending.rbegin(), ascending.rend()));
    EXPECT_EQ(ascending, (Keys{"1", "3", "5", "7", "9"}));
}

}  // namespace
