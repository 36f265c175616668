#include "driver/CFiTreeDeleter.h"

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

void growAndDeleteThreeTrees() {
    std::vector<CFiFiidNode*> roots;
    const CFiTreeDeleter deleter(roots);
    for (int i = 0; i < 3; ++i) {
        roots.push_back(grow(nullptr));
        growTree(roots.back());
    }
}

void growAndDeleteADeepTree() {
    std::vector<CFiFiidNode*> roots;
    const CFiTreeDeleter deleter(roots);
    roots.push_back(grow(nullptr));
    CFiFiidNode* node = roots[0];
    for (int i = 0; i < 500000; ++i) {
        node = grow(node);
    }
}

TEST(CFiTreeDeleter, DeletesEveryTreeThatItsListHoldsAtTheEndOfTheScope) {
    // The allocator keeps a stock of small blocks, which it counts as allocated. First, a few rounds until
    // this stock does not change any more; how many that takes depends on the earlier tests in this process.
    for (int i = 0; i < 10; ++i) {
        growAndDeleteThreeTrees();
    }
    const std::size_t before = allocatedBytes();
    growAndDeleteThreeTrees();
    EXPECT_EQ(allocatedBytes(), before);
}

TEST(CFiTreeDeleter, DeletesATreeDeeperThanAnyStack) {
    growAndDeleteADeepTree();
    const std::size_t before = allocatedBytes();
    growAndDeleteADeepTree();
    EXPECT_EQ(allocatedBytes(), before);
}

TEST(CFiTreeDeleter, LeavesTreesAloneThatItsListDoesNotHold) {
    std::vector<CFiFiidNode*> ours{grow(nullptr)};
    const CFiTreeDeleter deleter(ours);
    growTree(ours[0]);
    const std::vector<CFiFiidNode*> none;
    {
        // Deletes the trees in its list when the scope ends.
        const CFiTreeDeleter nothing(none);
    }
    EXPECT_EQ(ours[0]->children.size(), 3U);
    EXPECT_EQ(ours[0]->children[0]->children[0]->objid, "long enough to need a block of its own");
}

}  // namespace
