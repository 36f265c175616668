#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "fiid/CFiFiidNode.h"
#include "tests/fiid/Tree.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

Trace printed(CFiFiidNode& node, std::int32_t level) {
    CTraceRecorder recorder;
    node.print(level);
    return recorder.take();
}

TEST(CFiFiidNodePrint, RootAloneGivesThreeLines) {
    CFiFiidNode node;
    node.objid = "D1";
    node.type = 3;
    EXPECT_EQ(printed(node, 0), progress({" [D1]", " {}", " <3 >"}));
}

TEST(CFiFiidNodePrint, PrintsInPreOrderIndentedByLevel) {
    const auto parsed = parseDocument(
        "<Node><objid>r</objid><altobjid>ra</altobjid><splitType>rs</splitType>"
        "<Node><objid>c1</objid><Node><objid>g</objid><type>9</type></Node></Node>"
        "<Node><objid>c2</objid></Node></Node>");
    EXPECT_EQ(printed(*parsed->root, 0),
              progress({" [r]", " {ra}", " <0 rs>", "\t [c1]", "\t {}", "\t <0 >", "\t\t [g]", "\t\t {}",
                        "\t\t <9 >", "\t [c2]", "\t {}", "\t <0 >"}));
}

TEST(CFiFiidNodePrint, NegativeTypeKeepsItsSign) {
    CFiFiidNode node;
    node.type = -7;
    node.splitType = "s";
    EXPECT_EQ(printed(node, 0), progress({" []", " {}", " <-7 s>"}));
}

TEST(CFiFiidNodePrint, StartsAtTheGivenLevel) {
    CFiFiidNode node;
    node.objid = "a";
    EXPECT_EQ(printed(node, 2), progress({"\t\t [a]", "\t\t {}", "\t\t <0 >"}));
}

TEST(CFiFiidNodePrint, NegativeLevelIndentsNothingUntilItIsAboveZero) {
    const auto parsed = parseDocument("<Node><Node><Node><Node/></Node></Node></Node>");
    EXPECT_EQ(printed(*parsed->root, -2), progress({" []", " {}", " <0 >", " []", " {}", " <0 >", " []",
                                                    " {}", " <0 >", "\t []", "\t {}", "\t <0 >"}));
}

TEST(CFiFiidNodePrint, LeastLevelOfAllIndentsNothing) {
    CFiFiidNode node;
    EXPECT_EQ(printed(node, std::numeric_limits<std::int32_t>::min()), progress({" []", " {}", " <0 >"}));
}

TEST(CFiFiidNodePrint, IndentsANodeLessAgainBehindADeeperOne) {
    const auto parsed = parseDocument("<Node><Node><Node/></Node><Node/></Node>");
    const Trace trace = printed(*parsed->root, 0);
    ASSERT_EQ(trace.size(), 12U);
    EXPECT_EQ(trace[0].text, " []");
    EXPECT_EQ(trace[3].text, "\t []");
    EXPECT_EQ(trace[6].text, "\t\t []");
    EXPECT_EQ(trace[9].text, "\t []");
}

TEST(CFiFiidNodePrint, PercentSignsInFieldsArePrintedAsTheyStand) {
    CFiFiidNode node;
    node.objid = "%s%n";
    node.altobjid = "100%";
    node.splitType = "%d";
    EXPECT_EQ(printed(node, 0), progress({" [%s%n]", " {100%}", " <0 %d>"}));
}

TEST(CFiFiidNodePrint, OtherFieldsAreNotPrinted) {
    CFiFiidNode node;
    node.fiidFile = node.timeStamp = "hidden";
    node.state = 2;
    EXPECT_EQ(printed(node, 0), progress({" []", " {}", " <0 >"}));
}

// The lines are not formatted, because with their indentation they would together be quadratic in the depth.
TEST(CFiFiidNodePrint, WalksATreeDeeperThanAnyStack) {
    std::string document;
    for (int i = 0; i < 300000; ++i) {
        document += "<Node>";
    }
    const auto parsed = parseDocument(document);
    ASSERT_NE(parsed->root, nullptr);
    parsed->root->print(0);
    EXPECT_EQ(parsed->root->children.size(), 1U);
}

}  // namespace
}  // namespace fi_test
