// What a parser does when its reader cannot be made. This program's own reader factory stands in front of
// the XML library's and throws what a test wants.

#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/framework/XMLGrammarPool.hpp>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include "driver/CFiTreeReleaser.h"
#include "fiid/CFiFiidHandler.h"
#include "fiid/CFiFiidLoader.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceRecorder.h"

namespace {

std::function<void()> failure;
bool isMemoryShortBehindADocument = false;

class CReader : public xercesc::SAX2XMLReaderImpl {
public:
    using SAX2XMLReaderImpl::SAX2XMLReaderImpl;

    void parse(const xercesc::InputSource& source) override {
        SAX2XMLReaderImpl::parse(source);
        if (isMemoryShortBehindADocument) {
            throw xercesc::OutOfMemoryException();
        }
    }
};

}  // namespace

namespace xercesc_3_2 {

SAX2XMLReader* XMLReaderFactory::createXMLReader(MemoryManager* const manager, XMLGrammarPool* const pool) {
    if (failure) {
        failure();
    }
    return new (manager) CReader(manager, pool);
}

}  // namespace xercesc_3_2

namespace {

using fi_test::Trace;

class CFiFiidParserWithoutReader : public testing::Test {
protected:
    CFiFiidParserWithoutReader() {
        failure = [] {
            ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_NoDTDValidator,
                               xercesc::XMLPlatformUtils::fgMemoryManager);
        };
    }
    ~CFiFiidParserWithoutReader() override { failure = nullptr; }
};

void expectThatParsersWork() {
    failure = nullptr;
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    parser.setHandler(&handler);
    parser.parse("<a><");
    EXPECT_TRUE(handler.errorSeen);
}

TEST_F(CFiFiidParserWithoutReader, InitDropsTheExceptionOfTheXmlLibrary) {
    {
        fi_test::TraceRecorder recorder;
        const CFiFiidParser parser(nullptr);
        EXPECT_EQ(parser.reader, nullptr);
        EXPECT_EQ(recorder.take(), (Trace{{4, "Entering CFiFiidParser::CFiFiidParser\n"},
                                          {4, "Entering CFiFiidParser::init\n"},
                                          {4, "Exiting CFiFiidParser::init\n"},
                                          {4, "Exiting CFiFiidParser::CFiFiidParser\n"}}));
    }
    expectThatParsersWork();
}

TEST_F(CFiFiidParserWithoutReader, SetHandlerStoresTheHandler) {
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    fi_test::TraceRecorder recorder;
    parser.setHandler(&handler);
    EXPECT_EQ(parser.handler, &handler);
    EXPECT_EQ(recorder.take(), (Trace{{4, "Entering CFiFiidParser::setHandler\n"},
                                      {4, "Exiting CFiFiidParser::setHandler\n"}}));
}

TEST_F(CFiFiidParserWithoutReader, ParseDoesNothing) {
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    parser.setHandler(&handler);
    fi_test::TraceRecorder recorder;
    parser.parse("<Node/>");
    EXPECT_EQ(handler.root, nullptr);
    EXPECT_EQ(recorder.take(),
              (Trace{{4, "Entering CFiFiidParser::parse\n"}, {4, "Exiting CFiFiidParser::parse\n"}}));
}

TEST_F(CFiFiidParserWithoutReader, DestructorStillTerminatesTheXmlLibrary) {
    auto parser = std::make_unique<CFiFiidParser>(nullptr);
    fi_test::TraceRecorder recorder;
    parser.reset();
    EXPECT_EQ(recorder.take(), (Trace{{4, "Entering CFiFiidParser::~CFiFiidParser\n"},
                                      {4, "Exiting CFiFiidParser::~CFiFiidParser\n"}}));
    // Initialised as often as terminated: the library's own memory manager is gone.
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);
}

TEST_F(CFiFiidParserWithoutReader, DocumentYieldsNoTreeAndCountsAsLoaded) {
    const fi_test::TemporaryFolder folder;
    CFiFiidLoader loader;
    EXPECT_EQ(loader.import({folder.write("a.xml", "<Node/>")}), 0);
    EXPECT_TRUE(loader.nodes.empty());
}

// What is not an XMLException passes on, and the constructor undoes what it set up.
TEST_F(CFiFiidParserWithoutReader, OtherExceptionsLeaveTheConstructorWithTheXmlLibraryBalanced) {
    failure = [] { throw xercesc::OutOfMemoryException(); };
    EXPECT_THROW(CFiFiidParser(nullptr), xercesc::OutOfMemoryException);
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);

    failure = [] { throw std::bad_alloc(); };
    fi_test::TraceRecorder recorder;
    EXPECT_THROW(CFiFiidParser(nullptr), std::bad_alloc);
    EXPECT_EQ(recorder.take(),
              (Trace{{4, "Entering CFiFiidParser::CFiFiidParser\n"}, {4, "Entering CFiFiidParser::init\n"}}));
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);
    expectThatParsersWork();
}

// A reader that throws from its parse.
class CThrowingHandler : public xercesc::DefaultHandler {
public:
    void startElement(const XMLCh*, const XMLCh*, const XMLCh*, const xercesc::Attributes&) override {
        throw std::bad_alloc();
    }
};

TEST(CFiFiidParserThrowing, ParsePassesOnWhatTheReaderThrowsWithoutAnExitLine) {
    CThrowingHandler handler;
    CFiFiidParser parser(&handler);
    fi_test::TraceRecorder recorder;
    EXPECT_THROW(parser.parse("<a/>"), std::bad_alloc);
    EXPECT_EQ(recorder.take(), (Trace{{4, "Entering CFiFiidParser::parse\n"}}));
}

// The second document's reader fails with what nobody catches.
TEST(CFiFiidLoaderThrowing, ImportPassesItOnAndKeepsTheRootsBefore) {
    const fi_test::TemporaryFolder folder;
    const std::string good = folder.write("a.xml", "<Node/>");
    int calls = 0;
    failure = [&calls] {
        if (++calls == 2) {
            throw xercesc::OutOfMemoryException();
        }
    };
    CFiFiidLoader loader;
    EXPECT_THROW(loader.import({good, good, good}), xercesc::OutOfMemoryException);
    failure = nullptr;
    ASSERT_EQ(loader.nodes.size(), 1U);
    CFiTreeReleaser release(loader.nodes);
    EXPECT_EQ(loader.files.size(), 3U);
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);
}

// Whoever holds the loader must find the tree to free it.
TEST(CFiFiidLoaderThrowing, ImportKeepsTheTreeThatWasBuiltBeforeTheReaderFailed) {
    const fi_test::TemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<Node><objid>x</objid><Node/></Node>");
    CFiFiidLoader loader;
    isMemoryShortBehindADocument = true;
    EXPECT_THROW(loader.import({file, file}), xercesc::OutOfMemoryException);
    isMemoryShortBehindADocument = false;
    CFiTreeReleaser release(loader.nodes);
    ASSERT_EQ(loader.nodes.size(), 1U);
    EXPECT_EQ(loader.nodes.front()->objid, "x");
    EXPECT_EQ(loader.nodes.front()->children.size(), 1U);
}

}  // namespace
