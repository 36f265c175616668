#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "fiid/CFiFiidNode.h"
#include "tests/fiid/Tree.h"
#include "tests/support/TraceRecorder.h"

namespace {

using fi_test::Trace;

Trace printed(CFiFiidNode& node, std::int32_t level) {
    fi_test::TraceRecorder recorder;
    node.print(level);
    return recorder.take();
}

TEST(CFiFiidNodePrint, RootAloneGivesThreeLines) {
    CFiFiidNode node;
    node.objid = "D1";
    node.type = 3;
    EXPECT_EQ(printed(node, 0), (Trace{{4, " [D1]"}, {4, " {}"}, {4, " <3 >"}}));
}

TEST(CFiFiidNodePrint, PrintsInPreOrderIndentedByLevel) {
    const auto parsed = fi_test::parseDocument(
        "<Node><objid>r</objid><altobjid>ra</altobjid><splitType>rs</splitType>"
        "<Node><objid>c1</objid><Node><objid>g</objid><type>9</type></Node></Node>"
        "<Node><objid>c2</objid></Node></Node>");
    EXPECT_EQ(printed(*parsed->root, 0), (Trace{{4, " [r]"},
                                                {4, " {ra}"},
                                                {4, " <0 rs>"},
                                                {4, "\t [c1]"},
                                                {4, "\t {}"},
                                                {4, "\t <0 >"},
                                                {4, "\t\t [g]"},
                                                {4, "\t\t {}"},
                                                {4, "\t\t <9 >"},
                                                {4, "\t [c2]"},
                                                {4, "\t {}"},
                                                {4, "\t <0 >"}}));
}

TEST(CFiFiidNodePrint, NegativeTypeKeepsItsSign) {
    CFiFiidNode node;
    node.type = -7;
    node.splitType = "s";
    EXPECT_EQ(printed(node, 0), (Trace{{4, " []"}, {4, " {}"}, {4, " <-7 s>"}}));
}

TEST(CFiFiidNodePrint, StartsAtTheGivenLevel) {
    CFiFiidNode node;
    node.objid = "a";
    EXPECT_EQ(printed(node, 2), (Trace{{4, "\t\t [a]"}, {4, "\t\t {}"}, {4, "\t\t <0 >"}}));
}

TEST(CFiFiidNodePrint, NegativeLevelIndentsNothingUntilItIsAboveZero) {
    const auto parsed = fi_test::parseDocument("<Node><Node><Node><Node/></Node></Node></Node>");
    EXPECT_EQ(printed(*parsed->root, -2), (Trace{{4, " []"},
                                                 {4, " {}"},
                                                 {4, " <0 >"},
                                                 {4, " []"},
                                                 {4, " {}"},
                                                 {4, " <0 >"},
                                                 {4, " []"},
                                                 {4, " {}"},
                                                 {4, " <0 >"},
                                                 {4, "\t []"},
                                                 {4, "\t {}"},
                                                 {4, "\t <0 >"}}));
}

TEST(CFiFiidNodePrint, LeastLevelOfAllIndentsNothing) {
    CFiFiidNode node;
    EXPECT_EQ(printed(node, std::numeric_limits<std::int32_t>::min()),
              (Trace{{4, " []"}, {4, " {}"}, {4, " <0 >"}}));
}

TEST(CFiFiidNodePrint, IndentsANodeLessAgainBehindADeeperOne) {
    const auto parsed = fi_test::parseDocument("<Node><Node><Node/></Node><Node/></Node>");
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
    EXPECT_EQ(printed(node, 0), (Trace{{4, " [%s%n]"}, {4, " {100%}"}, {4, " <0 %d>"}}));
}

TEST(CFiFiidNodePrint, OtherFieldsAreNotPrinted) {
    CFiFiidNode node;
    node.fiidFile = node.timeStamp = "hidden";
    node.state = 2;
    EXPECT_EQ(printed(node, 0), (Trace{{4, " []"}, {4, " {}"}, {4, " <0 >"}}));
}

// Nobody formats these lines, whose texts together would be quadratic in the depth.
TEST(CFiFiidNodePrint, WalksATreeDeeperThanAnyStack) {
    std::string document;
    for (int i = 0; i < 300000; ++i) {
        document += "<Node>";
    }
    const auto parsed = fi_test::parseDocument(document);
    ASSERT_NE(parsed->root, nullptr);
    parsed->root->print(0);
    EXPECT_EQ(parsed->root->children.size(), 1U);
}

}  // namespace
