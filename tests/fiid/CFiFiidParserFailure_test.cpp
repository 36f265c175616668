// What a parser does when its reader cannot be made. This program replaces the XML library's reader factory
// with one that throws what a test asks for.

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

#include "driver/CFiTreeDeleter.h"
#include "fiid/CFiFiidHandler.h"
#include "fiid/CFiFiidLoader.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceRecorder.h"

namespace {

std::function<void()> readerFailure;
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
    if (readerFailure) {
        readerFailure();
    }
    return new (manager) CReader(manager, pool);
}

}  // namespace xercesc_3_2

namespace fi_test {
namespace {

class CFiFiidParserWithoutReader : public testing::Test {
protected:
    CFiFiidParserWithoutReader() {
        readerFailure = [] {
            ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_NoDTDValidator,
                               xercesc::XMLPlatformUtils::fgMemoryManager);
        };
    }
    ~CFiFiidParserWithoutReader() override { readerFailure = nullptr; }
};

void expectThatParsersWork() {
    readerFailure = nullptr;
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    parser.setHandler(&handler);
    parser.parse("<a><");
    EXPECT_TRUE(handler.errorSeen);
}

TEST_F(CFiFiidParserWithoutReader, InitDropsTheExceptionOfTheXmlLibrary) {
    {
        CTraceRecorder recorder;
        const CFiFiidParser parser(nullptr);
        EXPECT_EQ(parser.reader, nullptr);
        EXPECT_EQ(recorder.take(), progress({"Entering CFiFiidParser::CFiFiidParser\n"}) +
                                       entryAndExit("CFiFiidParser::init") +
                                       progress({"Exiting CFiFiidParser::CFiFiidParser\n"}));
    }
    expectThatParsersWork();
}

TEST_F(CFiFiidParserWithoutReader, SetHandlerStoresTheHandler) {
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    CTraceRecorder recorder;
    parser.setHandler(&handler);
    EXPECT_EQ(parser.handler, &handler);
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::setHandler"));
}

TEST_F(CFiFiidParserWithoutReader, ParseDoesNothing) {
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    parser.setHandler(&handler);
    CTraceRecorder recorder;
    parser.parse("<Node/>");
    EXPECT_EQ(handler.root, nullptr);
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::parse"));
}

TEST_F(CFiFiidParserWithoutReader, DestructorStillTerminatesTheXmlLibrary) {
    auto parser = std::make_unique<CFiFiidParser>(nullptr);
    CTraceRecorder recorder;
    parser.reset();
    EXPECT_EQ(recorder.take(), entryAndExit("CFiFiidParser::~CFiFiidParser"));
    // Initialised as often as terminated: the library's own memory manager is gone.
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);
}

TEST_F(CFiFiidParserWithoutReader, DocumentYieldsNoTreeAndCountsAsLoaded) {
    const CTemporaryFolder folder;
    CFiFiidLoader loader;
    EXPECT_EQ(loader.import({folder.write("a.xml", "<Node/>")}), 0);
    EXPECT_TRUE(loader.nodes.empty());
}

// An exception that is not an XMLException leaves the constructor, which terminates the XML library before.
TEST_F(CFiFiidParserWithoutReader, OtherExceptionsLeaveTheConstructorWithTheXmlLibraryBalanced) {
    readerFailure = [] { throw xercesc::OutOfMemoryException(); };
    EXPECT_THROW(CFiFiidParser(nullptr), xercesc::OutOfMemoryException);
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);

    readerFailure = [] { throw std::bad_alloc(); };
    CTraceRecorder recorder;
    EXPECT_THROW(CFiFiidParser(nullptr), std::bad_alloc);
    EXPECT_EQ(recorder.take(),
              progress({"Entering CFiFiidParser::CFiFiidParser\n", "Entering CFiFiidParser::init\n"}));
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
    CTraceRecorder recorder;
    EXPECT_THROW(parser.parse("<a/>"), std::bad_alloc);
    EXPECT_EQ(recorder.take(), progress({"Entering CFiFiidParser::parse\n"}));
}

// The reader of the second document throws an exception that the loader does not catch.
TEST(CFiFiidLoaderThrowing, ImportPassesItOnAndKeepsTheRootsBefore) {
    const CTemporaryFolder folder;
    const std::string good = folder.write("a.xml", "<Node/>");
    int calls = 0;
    readerFailure = [&calls] {
        if (++calls == 2) {
            throw xercesc::OutOfMemoryException();
        }
    };
    CFiFiidLoader loader;
    EXPECT_THROW(loader.import({good, good, good}), xercesc::OutOfMemoryException);
    readerFailure = nullptr;
    ASSERT_EQ(loader.nodes.size(), 1U);
    CFiTreeDeleter release(loader.nodes);
    EXPECT_EQ(loader.files.size(), 3U);
    EXPECT_EQ(xercesc::XMLPlatformUtils::fgMemoryManager, nullptr);
}

// The user of the loader frees the trees, so it must find this one in the loader's list.
TEST(CFiFiidLoaderThrowing, ImportKeepsTheTreeThatWasBuiltBeforeTheReaderFailed) {
    const CTemporaryFolder folder;
    const std::string file = folder.write("a.xml", "<Node><objid>x</objid><Node/></Node>");
    CFiFiidLoader loader;
    isMemoryShortBehindADocument = true;
    EXPECT_THROW(loader.import({file, file}), xercesc::OutOfMemoryException);
    isMemoryShortBehindADocument = false;
    CFiTreeDeleter release(loader.nodes);
    ASSERT_EQ(loader.nodes.size(), 1U);
    EXPECT_EQ(loader.nodes.front()->objid, "x");
    EXPECT_EQ(loader.nodes.front()->children.size(), 1U);
}

}  // namespace
}  // namespace fi_test
