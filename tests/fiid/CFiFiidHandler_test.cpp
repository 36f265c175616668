#include "fiid/CFiFiidHandler.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/internal/VecAttributesImpl.hpp>

#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "tests/fiid/Tree.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

const STraceLine kEnteringStart{4, "Entering CFiFiidHandler::startElement\n"};
const STraceLine kExitingStart{4, "Exiting CFiFiidHandler::startElement\n"};
const STraceLine kEnteringEnd{4, "Entering CFiFiidHandler::endElement\n"};
const STraceLine kExitingEnd{4, "Exiting CFiFiidHandler::endElement\n"};

// A handler whose callbacks the test calls itself. A parser keeps the XML library initialised meanwhile.
class CFiFiidHandlerEvents : public testing::Test {
protected:
    void open(const XMLCh* name) {
        handler.startElement(u"", u"", name, xercesc::VecAttributesImpl());
        if (handler.root != nullptr && (trees.roots.empty() || trees.roots.back() != handler.root)) {
            trees.roots.push_back(handler.root);
        }
    }
    void close(const XMLCh* name) { handler.endElement(u"", u"", name); }
    void text(const XMLCh* chars) { handler.characters(chars, 0); }
    void element(const XMLCh* name, const XMLCh* chars) {
        open(name);
        text(chars);
        close(name);
    }

    STrees trees;
    CFiFiidParser parser{nullptr};
    CFiFiidHandler handler;
};

TEST_F(CFiFiidHandlerEvents, StartsWithNothing) {
    EXPECT_EQ(handler.depth, 0);
    EXPECT_EQ(handler.root, nullptr);
    EXPECT_EQ(handler.current, nullptr);
    EXPECT_FALSE(handler.done);
    EXPECT_EQ(handler.spareName, "");
    EXPECT_FALSE(handler.errorSeen);
    EXPECT_EQ(handler.text, "");
    EXPECT_EQ(handler.lastException.getMessage(), nullptr);
    EXPECT_EQ(handler.lastException.getPublicId(), nullptr);
    EXPECT_EQ(handler.lastException.getSystemId(), nullptr);
    EXPECT_EQ(handler.lastException.getLineNumber(), 0U);
    EXPECT_EQ(handler.lastException.getColumnNumber(), 0U);
}

TEST_F(CFiFiidHandlerEvents, FollowsTheNestingOfNodes) {
    open(u"Node");
    CFiFiidNode* const root = handler.root;
    EXPECT_EQ(handler.current, root);
    EXPECT_EQ(handler.depth, 1);
    open(u"Node");
    EXPECT_EQ(handler.depth, 2);
    EXPECT_EQ(handler.current, root->children.at(0));
    open(u"other");
    EXPECT_EQ(handler.depth, 2);
    close(u"other");
    close(u"Node");
    EXPECT_EQ(handler.current, root);
    EXPECT_FALSE(handler.done);
    close(u"Node");
    EXPECT_EQ(handler.current, nullptr);
    EXPECT_EQ(handler.depth, 0);
    EXPECT_TRUE(handler.done);
    EXPECT_EQ(handler.root, root);
}

TEST_F(CFiFiidHandlerEvents, SecondTopLevelNodeReplacesTheRootAndTheFirstStaysAllocated) {
    open(u"Node");
    element(u"objid", u"first");
    element(u"timeStamp", u"1");
    CFiFiidNode* const first = handler.root;
    close(u"Node");
    element(u"timeStamp", u"2");
    open(u"Node");
    ASSERT_NE(handler.root, first);
    EXPECT_EQ(handler.root->parent, nullptr);
    EXPECT_TRUE(handler.done);
    element(u"objid", u"second");
    close(u"Node");
    EXPECT_EQ(dump(handler.root), "(second|||0)");
    EXPECT_EQ(handler.root->timeStamp, "");
    EXPECT_EQ(dump(first), "(first|||0)");
    EXPECT_EQ(first->timeStamp, "2");
}

TEST_F(CFiFiidHandlerEvents, DataElementsOutsideEveryNodeAreIgnored) {
    for (const XMLCh* name : {u"objid", u"altobjid", u"splitType", u"type", u"timeStamp"}) {
        element(name, u"1");
    }
    EXPECT_EQ(handler.root, nullptr);
    open(u"Node");
    close(u"Node");
    for (const XMLCh* name : {u"objid", u"altobjid", u"splitType", u"type"}) {
        element(name, u"1");
    }
    EXPECT_EQ(dump(handler.root), "(|||0)");
}

TEST_F(CFiFiidHandlerEvents, TextIsTakenToItsNulWhateverTheLengthSays) {
    handler.characters(u"abc", 1);
    EXPECT_EQ(handler.text, "abc");
    handler.characters(u"d", 100);
    EXPECT_EQ(handler.text, "d");
}

TEST_F(CFiFiidHandlerEvents, LaterTextReplacesEarlierText) {
    text(u"one");
    text(u"two");
    EXPECT_EQ(handler.text, "two");
    text(u"");
    EXPECT_EQ(handler.text, "");
}

TEST_F(CFiFiidHandlerEvents, TextIsNotClearedByElements) {
    text(u"kept");
    open(u"Node");
    close(u"Node");
    EXPECT_EQ(handler.text, "kept");
}

TEST_F(CFiFiidHandlerEvents, TextOutsideAsciiIsConvertedToTheLocalCodePage) {
    text(u"\u00e4\u65e5");
    EXPECT_EQ(handler.text, "\xC3\xA4\xE6\x97\xA5");
}

TEST_F(CFiFiidHandlerEvents, StartTagsAndEndTagsTraceEntryAndExit) {
    CTraceRecorder recorder;
    open(u"Node");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringStart, kExitingStart}));
    open(u"objid");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringStart, kExitingStart}));
    text(u"x");
    EXPECT_EQ(recorder.take(), Trace());
    close(u"objid");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringEnd, kExitingEnd}));
}

TEST_F(CFiFiidHandlerEvents, ClosingTheOutermostNodeTracesOneMoreExit) {
    open(u"Node");
    open(u"Node");
    CTraceRecorder recorder;
    close(u"Node");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringEnd, kExitingEnd}));
    close(u"Node");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringEnd, kExitingEnd, kExitingEnd}));
}

TEST_F(CFiFiidHandlerEvents, EveryTagBehindTheOutermostNodeTracesOneMoreExit) {
    open(u"Node");
    close(u"Node");
    CTraceRecorder recorder;
    open(u"other");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringStart, kExitingStart, kExitingStart}));
    close(u"other");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringEnd, kExitingEnd, kExitingEnd}));
    element(u"timeStamp", u"t");
    EXPECT_EQ(recorder.take(),
              (Trace{kEnteringStart, kExitingStart, kExitingStart, kEnteringEnd, kExitingEnd, kExitingEnd}));
}

TEST_F(CFiFiidHandlerEvents, ClosingASecondTopLevelNodeTracesTwoMoreExits) {
    open(u"Node");
    close(u"Node");
    open(u"Node");
    CTraceRecorder recorder;
    close(u"Node");
    EXPECT_EQ(recorder.take(), (Trace{kEnteringEnd, kExitingEnd, kExitingEnd, kExitingEnd}));
}

TEST_F(CFiFiidHandlerEvents, ReportsAreRecordedAndTracedByNameOnly) {
    const auto report = [](const XMLCh* message, XMLFileLoc line) {
        return xercesc::SAXParseException(message, u"p", u"s", line, line + 1);
    };
    const struct {
        void (CFiFiidHandler::*callback)(const xercesc::SAXParseException&);
        std::string name;
    } rows[] = {
        {&CFiFiidHandler::error, "CFiFiidHandler::error"},
        {&CFiFiidHandler::fatalError, "CFiFiidHandler::fatalError"},
        {&CFiFiidHandler::warning, "CFiFiidHandler::warning"},
    };
    XMLFileLoc line = 7;
    for (const auto& row : rows) {
        handler.errorSeen = false;
        CTraceRecorder recorder;
        (handler.*row.callback)(report(u"m", ++line));
        EXPECT_EQ(recorder.take(), entryAndExit("" + row.name + ""));
        EXPECT_TRUE(handler.errorSeen) << row.name;
        EXPECT_EQ(handler.lastException.getLineNumber(), line) << row.name;
        EXPECT_EQ(std::u16string(handler.lastException.getMessage()), u"m") << row.name;
    }
}

TEST(CFiFiidHandler, ConstructionAndDestructionTraceEntryAndExit) {
    const CFiFiidParser parser(nullptr);
    CTraceRecorder recorder;
    auto handler = std::make_unique<CFiFiidHandler>();
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidHandler::CFiFiidHandler"));
    handler.reset();
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidHandler::~CFiFiidHandler"));
}

// The rows show "objid|altobjid" of the root, which tells which text each element takes.
TEST(CFiFiidHandler, AnElementTakesTheLastPieceOfTextBeforeItsEndTag) {
    const struct {
        const char* description;
        const char* content;
        const char* fields;
    } rows[] = {
        {"own text", "<objid>a</objid><altobjid>b</altobjid>", "a|b"},
        {"self-closing takes the text before", "<type>7</type><objid/>", "7|"},
        {"empty takes the text before", "<type>7</type><objid></objid>", "7|"},
        {"white space before it", "<altobjid>b</altobjid> <objid/>", " |b"},
        {"white space inside", "<objid> a </objid>", " a |"},
        {"last piece behind a comment", "<objid>a<!-- c -->b</objid>", "b|"},
        {"last piece behind an instruction", "<objid>a<?p i?>b</objid>", "b|"},
        {"last piece behind a reference", "<objid>a&amp;b</objid>", "&b|"},
        {"last piece behind a character reference", "<objid>a&#98;c</objid>", "bc|"},
        {"reference at the end", "<objid>a&lt;</objid>", "<|"},
        {"section alone", "<objid><![CDATA[a<b]]></objid>", "a<b|"},
        {"section between texts", "<objid>a<![CDATA[b]]>c</objid>", "c|"},
        {"section at the end", "<objid>a<![CDATA[b]]></objid>", "b|"},
        {"empty section makes it empty", "<objid>a<![CDATA[]]></objid>", "|"},
        {"text behind an inner element", "<objid>a<x>b</x>c</objid>", "c|"},
        {"text of an inner element", "<objid>a<x>b</x></objid>", "b|"},
        {"line ends become line feeds", "<objid>a\r\nb\rc</objid>", "a\nb\nc|"},
    };
    for (const auto& row : rows) {
        const auto parsed = parseDocument(std::string("<Node>") + row.content + "</Node>");
        ASSERT_NE(parsed->root, nullptr) << row.description;
        EXPECT_EQ(parsed->root->objid + '|' + parsed->root->altobjid, row.fields) << row.description;
    }
}

TEST(CFiFiidHandler, DocumentWithAFaultKeepsTheTreeBuiltBeforeIt) {
    const auto parsed = parseDocument("<Node><objid>a</objid><Node><objid>b</objid></Node><Node><objid>c");
    EXPECT_TRUE(parsed->errorSeen);
    EXPECT_EQ(dump(parsed->root), "(a|||0 (b|||0) (|||0))");
}

TEST(CFiFiidHandler, WarningOfTheReaderCountsAsAnError) {
    const auto parsed = parseDocument(
        "<!DOCTYPE Node [<!ATTLIST Node a CDATA #IMPLIED><!ATTLIST Node a CDATA #IMPLIED>]>"
        "<Node><objid>a</objid></Node>");
    EXPECT_TRUE(parsed->errorSeen);
    EXPECT_EQ(dump(parsed->root), "(a|||0)");
}

TEST(CFiFiidHandler, GoodDocumentReportsNothing) {
    EXPECT_FALSE(parseDocument("<Node/>")->errorSeen);
}

}  // namespace
}  // namespace fi_test
