#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "fiid/CFiFiidNode.h"
#include "tests/fiid/Tree.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

using Pairs = std::map<std::string, std::string>;

// A chain of nodes, each the only child of the one before.
std::unique_ptr<STrees> chain(const std::vector<std::pair<std::string, std::string>>& ids) {
    auto trees = std::make_unique<STrees>();
    CFiFiidNode* parent = nullptr;
    for (const auto& [objid, altobjid] : ids) {
        auto* node = new CFiFiidNode;
        node->objid = objid;
        node->altobjid = altobjid;
        node->parent = parent;
        if (parent == nullptr) {
            trees->roots.push_back(node);
        } else {
            parent->children.push_back(node);
        }
        parent = node;
    }
    return trees;
}

Pairs found(const CFiFiidNode& node, const std::string& pattern, Pairs pairs = {}) {
    EXPECT_EQ(node.getNodes(pattern, pairs), 0);
    return pairs;
}

TEST(CFiFiidNodeQuery, GoesOnBelowAMatchingNode) {
    const auto trees = chain({{"UDID##disk1", ""}, {"UDID##disk2", "alt2"}});
    EXPECT_EQ(found(*trees->roots[0], "UDID##"), (Pairs{{"UDID##disk1", ""}, {"UDID##disk2", "alt2"}}));
}

TEST(CFiFiidNodeQuery, MatchesThePatternAnywhereAndStoresTheWholeObjid) {
    const auto trees = chain({{"xUDID##y", "a"}});
    EXPECT_EQ(found(*trees->roots[0], "UDID##"), (Pairs{{"xUDID##y", "a"}}));
}

TEST(CFiFiidNodeQuery, CaseCounts) {
    const auto trees = chain({{"udid##disk1", "a"}});
    EXPECT_EQ(found(*trees->roots[0], "UDID##"), Pairs());
}

TEST(CFiFiidNodeQuery, LooksIntoTheObjidOnly) {
    const auto trees = chain({{"", "UDID##a"}});
    CFiFiidNode& root = *trees->roots[0];
    root.splitType = root.timeStamp = root.fiidFile = "UDID##b";
    EXPECT_EQ(found(root, "UDID##"), Pairs());
}

TEST(CFiFiidNodeQuery, FindsANodeDeepInTheTree) {
    std::vector<std::pair<std::string, std::string>> ids(10);
    ids.emplace_back("UDID##deep", "d");
    const auto trees = chain(ids);
    EXPECT_EQ(found(*trees->roots[0], "UDID##"), (Pairs{{"UDID##deep", "d"}}));
}

TEST(CFiFiidNodeQuery, OfNodesWithOneObjidTheLastInPreOrderWins) {
    const auto siblings = parseDocument(
        "<Node><Node><objid>UDID##x</objid><altobjid>A</altobjid></Node>"
        "<Node><objid>UDID##x</objid><altobjid>B</altobjid></Node></Node>");
    EXPECT_EQ(found(*siblings->root, "UDID##"), (Pairs{{"UDID##x", "B"}}));

    const auto descendant = chain({{"UDID##x", "A"}, {"", ""}, {"UDID##x", "B"}});
    EXPECT_EQ(found(*descendant->roots[0], "UDID##"), (Pairs{{"UDID##x", "B"}}));

    // The whole subtree of a sibling comes before the next sibling.
    const auto subtree = parseDocument(
        "<Node><Node><Node><objid>UDID##x</objid><altobjid>A</altobjid></Node></Node>"
        "<Node><objid>UDID##x</objid><altobjid>B</altobjid></Node></Node>");
    EXPECT_EQ(found(*subtree->root, "UDID##"), (Pairs{{"UDID##x", "B"}}));
}

TEST(CFiFiidNodeQuery, ReplacesAndAddsEntriesAndLeavesTheOthers) {
    const auto trees = chain({{"UDID##x", "new"}});
    EXPECT_EQ(found(*trees->roots[0], "UDID##", {{"UDID##x", "old"}, {"other", "kept"}}),
              (Pairs{{"UDID##x", "new"}, {"other", "kept"}}));
}

TEST(CFiFiidNodeQuery, WithoutAMatchLeavesTheMapAsItWas) {
    const auto trees = chain({{"a", "b"}, {"c", "d"}});
    EXPECT_EQ(found(*trees->roots[0], "UDID##", {{"k", "v"}}), (Pairs{{"k", "v"}}));
}

TEST(CFiFiidNodeQuery, EmptyPatternMatchesEveryNode) {
    const auto trees = chain({{"", "1"}, {"a", "2"}, {"", "3"}});
    EXPECT_EQ(found(*trees->roots[0], ""), (Pairs{{"", "3"}, {"a", "2"}}));
}

TEST(CFiFiidNodeQuery, SeesTheTreeBelowItsNodeOnly) {
    const auto trees = chain({{"UDID##root", "1"}, {"UDID##child", "2"}});
    EXPECT_EQ(found(*trees->roots[0]->children[0], "UDID##"), (Pairs{{"UDID##child", "2"}}));
}

TEST(CFiFiidNodeQuery, WritesNoTraceLines) {
    const auto trees = chain({{"UDID##a", "b"}});
    CTraceRecorder recorder;
    found(*trees->roots[0], "UDID##");
    EXPECT_EQ(recorder.take(), Trace());
}

TEST(CFiFiidNodeQuery, WalksATreeDeeperThanAnyStack) {
    const auto trees = chain(std::vector<std::pair<std::string, std::string>>(300000, {"UDID##a", "b"}));
    EXPECT_EQ(found(*trees->roots[0], "UDID##"), (Pairs{{"UDID##a", "b"}}));
}

}  // namespace
}  // namespace fi_test
