#include "fiid/CFiFiidNode.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/fiid/Tree.h"

namespace fi_test {
namespace {

struct SRow {
    const char* document;
    const char* tree;
    const char* timeStamp;
};

template <std::size_t count>
void expectTrees(const SRow (&rows)[count]) {
    for (const SRow& row : rows) {
        const auto parsed = parseDocument(row.document);
        EXPECT_EQ(dump(parsed->root), row.tree) << row.document;
        EXPECT_EQ(parsed->root == nullptr ? "" : parsed->root->timeStamp, row.timeStamp) << row.document;
    }
}

TEST(CFiFiidNode, StartsEmpty) {
    const CFiFiidNode node;
    EXPECT_EQ(dump(&node), "(|||0)");
    EXPECT_EQ(node.fiidFile, "");
    EXPECT_EQ(node.timeStamp, "");
    EXPECT_EQ(node.state, 0);
    EXPECT_EQ(node.parent, nullptr);
}

TEST(CFiFiidNode, TakesItsFieldsFromTheDataElements) {
    expectTrees(
        {{"<Node><objid>o</objid><altobjid>a</altobjid><splitType>s</splitType>"
          "<type>5</type><timeStamp>t</timeStamp></Node>",
          "(o|a|s|5)", "t"}});
}

TEST(CFiFiidNode, DocumentWithoutANodeYieldsNoRoot) {
    expectTrees({{"<a><objid>o</objid></a>", "none", ""}, {"<a/>", "none", ""}});
}

TEST(CFiFiidNode, NodeWithoutDataElementsKeepsEmptyStringsAndZero) {
    expectTrees({{"<Node/>", "(|||0)", ""}, {"<Node><x>1</x></Node>", "(|||0)", ""}});
}

TEST(CFiFiidNode, ChildrenKeepDocumentOrderAndKnowTheirParent) {
    const auto parsed = parseDocument(
        "<Node><objid>r</objid><Node><objid>a</objid><Node><objid>b</objid></Node></Node>"
        "<Node><objid>c</objid></Node></Node>");
    ASSERT_EQ(dump(parsed->root), "(r|||0 (a|||0 (b|||0)) (c|||0))");
    EXPECT_EQ(parsed->root->parent, nullptr);
    EXPECT_EQ(parsed->root->children[0]->parent, parsed->root);
    EXPECT_EQ(parsed->root->children[1]->parent, parsed->root);
    EXPECT_EQ(parsed->root->children[0]->children[0]->parent, parsed->root->children[0]);
}

TEST(CFiFiidNode, DataElementsBelongToTheInnermostOpenNode) {
    expectTrees({{"<Node><Node><objid>in</objid></Node><objid>out</objid></Node>", "(out|||0 (in|||0))", ""},
                 {"<Node><x><objid>o</objid></x></Node>", "(o|||0)", ""}});
}

TEST(CFiFiidNode, TimeStampOfANestedNodeIsTheRoots) {
    const auto parsed = parseDocument("<Node><Node><timeStamp>t</timeStamp></Node></Node>");
    EXPECT_EQ(parsed->root->timeStamp, "t");
    EXPECT_EQ(parsed->root->children.at(0)->timeStamp, "");
}

TEST(CFiFiidNode, SecondTimeStampReplacesTheFirst) {
    expectTrees({
        {"<Node><timeStamp>1</timeStamp><timeStamp>2</timeStamp></Node>", "(|||0)", "2"},
        {"<Node><timeStamp>1</timeStamp><Node><timeStamp>2</timeStamp></Node></Node>", "(|||0 (|||0))", "2"},
    });
}

TEST(CFiFiidNode, TimeStampMayFollowTheRoot) {
    expectTrees({{"<a><Node/><timeStamp>t</timeStamp></a>", "(|||0)", "t"}});
}

TEST(CFiFiidNode, TimeStampBeforeEveryNodeIsIgnored) {
    expectTrees({{"<a><timeStamp>t</timeStamp><Node/></a>", "(|||0)", ""}});
}

TEST(CFiFiidNode, TypeIsReadAsADecimalNumberOf32Bits) {
    const struct {
        const char* text;
        std::int32_t type;
    } rows[] = {
        {"12abc", 12},
        {"abc", 0},
        {" -3", -3},
        {"+7", 7},
        {"0x10", 0},
        {"010", 10},
        {"1 2", 1},
        {"- 3", 0},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
        {"2147483648", -2147483647 - 1},  // 2^31: the low 32 bits are those of the least value
        {"4294967296", 0},                // 2^32
        {"4294967301", 5},                // 2^32 + 5
        {"-4294967301", -5},
        {"9223372036854775807", -1},   // all bits set
        {"99999999999999999999", -1},  // beyond 64 bits: held at 2^63 - 1
        {"-99999999999999999999", 0},  // held at -2^63
    };
    for (const auto& row : rows) {
        const auto parsed = parseDocument(std::string("<Node><type>") + row.text + "</type></Node>");
        ASSERT_NE(parsed->root, nullptr) << row.text;
        EXPECT_EQ(parsed->root->type, row.type) << row.text;
    }
}

TEST(CFiFiidNode, ElementNamesCountWithCaseAndWithoutPrefix) {
    expectTrees({
        {"<node><objid>o</objid></node>", "none", ""},
        {"<NODE/>", "none", ""},
        {"<Node><ObjId>o</ObjId><TYPE>1</TYPE><TimeStamp>t</TimeStamp></Node>", "(|||0)", ""},
        {"<Node xmlns:x='u'><x:objid>o</x:objid><x:Node/></Node>", "(|||0)", ""},
        {"<x:Node xmlns:x='u'/>", "none", ""},
        {"<Nodes/>", "none", ""},
        {"<Node><objidx>o</objidx></Node>", "(|||0)", ""},
    });
}

TEST(CFiFiidNode, AttributesChangeNothing) {
    expectTrees(
        {{"<Node objid='a' type='3' timeStamp='t'><objid type='4'>o</objid>"
          "<Node altobjid='z'/></Node>",
          "(o|||0 (|||0))", ""}});
}

TEST(CFiFiidNode, CommentsInstructionsAndOtherElementsAreIgnored) {
    expectTrees(
        {{"<?xml version='1.0'?><!-- c --><Node><!-- c --><?p i?><objid>o</objid><x><y>z</y>"
          "</x></Node>",
          "(o|||0)", ""}});
}

}  // namespace
}  // namespace fi_test
