#include "driver/CFiTreeReleaser.h"

#include <malloc.h>

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "fiid/CFiFiidNode.h"

namespace {

// Bytes that are allocated and not freed. (Under the address sanitizer this is always 0, but that finds leaks
// and blocks that are freed twice itself.)
std::size_t allocatedBytes() {
    return mallinfo2().uordblks;
}

CFiFiidNode* grow(CFiFiidNode* parent) {
    auto* node = new CFiFiidNode;
    node->objid = "long enough to need a block of its own";
    node->parent = parent;
    if (parent != nullptr) {
        parent->children.push_back(node);
    }
    return node;
}

void growTree(CFiFiidNode* root) {
    grow(grow(root));
    grow(grow(root));
    grow(root);
}

void growAndReleaseThreeTrees() {
    std::vector<CFiFiidNode*> roots;
    const CFiTreeReleaser releaser(roots);
    for (int i = 0; i < 3; ++i) {
        roots.push_back(grow(nullptr));
        growTree(roots.back());
    }
}

void growAndReleaseADeepTree() {
    std::vector<CFiFiidNode*> roots;
    const CFiTreeReleaser releaser(roots);
    roots.push_back(grow(nullptr));
    CFiFiidNode* node = roots[0];
    for (int i = 0; i < 500000; ++i) {
        node = grow(node);
    }
}

TEST(CFiTreeReleaser, ReleasesEveryTreeThatItsListHoldsAtTheEndOfTheScope) {
    // The allocator keeps a stock of small blocks, which it counts as allocated. First, a few rounds until
    // this stock does not change any more; how many that takes depends on the earlier tests in this process.
    for (int i = 0; i < 10; ++i) {
        growAndReleaseThreeTrees();
    }
    const std::size_t before = allocatedBytes();
    growAndReleaseThreeTrees();
    EXPECT_EQ(allocatedBytes(), before);
}

TEST(CFiTreeReleaser, ReleasesATreeDeeperThanAnyStack) {
    growAndReleaseADeepTree();
    const std::size_t before = allocatedBytes();
    growAndReleaseADeepTree();
    EXPECT_EQ(allocatedBytes(), before);
}

TEST(CFiTreeReleaser, LeavesTreesAloneThatItsListDoesNotHold) {
    std::vector<CFiFiidNode*> ours{grow(nullptr)};
    const CFiTreeReleaser releaser(ours);
    growTree(ours[0]);
    const std::vector<CFiFiidNode*> none;
    {
        // Deletes the trees in its list when the scope ends.
        const CFiTreeReleaser nothing(none);
    }
    EXPECT_EQ(ours[0]->children.size(), 3U);
    EXPECT_EQ(ours[0]->children[0]->children[0]->objid, "long enough to need a block of its own");
}

}  // namespace
