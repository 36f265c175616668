#include "fiid/CFiFiidLoader.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/fiid/Tree.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceRecorder.h"

namespace fi_test {
namespace {

using Files = std::vector<std::string>;

constexpr const char* kCannotOpen = "CFiFiidLoader::load: ERROR: failed to load FIID file";

// A loader, the trees that it loads, and a folder with documents.
class CFiFiidLoaderTest : public testing::Test {
protected:
    std::string document(const std::string& name, const std::string& objid) {
        return folder.write(name, "<Node><objid>" + objid + "</objid></Node>");
    }

    // "objid@file" of each root, in order.
    Files roots() const {
        Files result;
        for (const CFiFiidNode* node : loader.nodes) {
            result.push_back(node->objid + '@' + node->fiidFile);
        }
        return result;
    }

    // The content that load gives for a file with these bytes.
    std::string loaded(const std::string& bytes) {
        std::string content;
        EXPECT_EQ(loader.load(folder.write("loaded", bytes), content), 0);
        return content;
    }

    CTemporaryFolder folder;
    CFiFiidLoader loader;
    CFiTreeDeleter deleter{loader.nodes};
};

TEST_F(CFiFiidLoaderTest, EmptyListLoadsNothingAndEmptiesFiles) {
    loader.files = {"old"};
    CTraceRecorder recorder;
    EXPECT_EQ(loader.import({}), 0);
    EXPECT_EQ(recorder.take(), entryAndExit(""));
    EXPECT_TRUE(loader.nodes.empty());
    EXPECT_TRUE(loader.files.empty());
}

TEST_F(CFiFiidLoaderTest, KeepsTheRootsInTheOrderOfTheListEachWithItsName) {
    const std::string a = document("a", "A");
    const std::string b = document("b", "B");
    EXPECT_EQ(loader.import({b, a}), 0);
    EXPECT_EQ(roots(), (Files{"B@" + b, "A@" + a}));
    EXPECT_EQ(loader.files, (Files{b, a}));
}

TEST_F(CFiFiidLoaderTest, OnlyTheRootOfADocumentKnowsItsFile) {
    const std::string file = folder.write("a", "<Node><Node/></Node>");
    EXPECT_EQ(loader.import({file}), 0);
    EXPECT_EQ(loader.nodes.at(0)->fiidFile, file);
    EXPECT_EQ(loader.nodes.at(0)->children.at(0)->fiidFile, "");
}

TEST_F(CFiFiidLoaderTest, MissingFileEndsTheImport) {
    const std::string a = document("a", "A");
    const std::string c = document("c", "C");
    const std::string missing = folder.path("missing");
    testing::internal::CaptureStdout();
    EXPECT_EQ(loader.import({a, missing, c}), 6);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ERROR: failed to load FIID file [" + missing + "]\n");
    EXPECT_EQ(roots(), Files{"A@" + a});
    EXPECT_EQ(loader.files, (Files{a, missing, c}));
}

TEST_F(CFiFiidLoaderTest, MissingFileTracesTheFailureBetweenEntryAndExit) {
    testing::internal::CaptureStdout();
    CTraceRecorder recorder;
    EXPECT_EQ(loader.import({folder.path("missing"), document("a", "A")}), 6);
    EXPECT_EQ(recorder.take(), progress({"Entering \n", "Entering \n"}) + failure(kCannotOpen) +
                                   progress({"Exiting \n", "Exiting \n"}));
    testing::internal::GetCapturedStdout();
}

TEST_F(CFiFiidLoaderTest, LoadOfAMissingFileClearsTheContent) {
    std::string content = "old";
    testing::internal::CaptureStdout();
    EXPECT_EQ(loader.load(folder.path("100%s"), content), 6);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "ERROR: failed to load FIID file [" + folder.path("100%s") + "]\n");
    EXPECT_EQ(content, "");
}

TEST_F(CFiFiidLoaderTest, LoadReplacesTheContentAndTracesEntryAndExit) {
    const std::string file = folder.write("a", "new");
    std::string content = "old";
    CTraceRecorder recorder;
    EXPECT_EQ(loader.load(file, content), 0);
    EXPECT_EQ(content, "new");
    EXPECT_EQ(recorder.take(), entryAndExit(""));
}

TEST_F(CFiFiidLoaderTest, LinesOfEveryLengthAreReadWholeAndUnchanged) {
    for (const std::size_t length : {0U, 1U, 2045U, 2046U, 2047U, 2048U, 4094U, 4095U, 4096U, 10000U}) {
        const std::string bytes = std::string(length, 'x') + "\nlast line without an end";
        EXPECT_EQ(loaded(bytes), bytes) << length;
    }
}

TEST_F(CFiFiidLoaderTest, LineEndsOfAllKindsStayAsTheyAre) {
    EXPECT_EQ(loaded("a\r\nb\rc\n\n"), "a\r\nb\rc\n\n");
}

TEST_F(CFiFiidLoaderTest, NulByteCutsTheRestOfItsLine) {
    EXPECT_EQ(loaded(std::string("ab\0cd\nef\n", 9)), "abef\n");
    EXPECT_EQ(loaded(std::string("\0\0\nx", 4)), "x");
}

// A line longer than the buffer is read in pieces of 2047 bytes, and a NUL byte cuts its piece.
TEST_F(CFiFiidLoaderTest, NulByteInALongLineCutsItsPieceOnly) {
    std::string bytes = std::string(3000, 'x') + '\n';
    bytes[10] = '\0';
    EXPECT_EQ(loaded(bytes), std::string(10, 'x') + std::string(3000 - 2047, 'x') + '\n');
}

TEST_F(CFiFiidLoaderTest, EmptyFileYieldsNoRootAndIsNoFailure) {
    const std::string a = document("a", "A");
    EXPECT_EQ(loader.import({folder.write("empty", ""), a}), 0);
    EXPECT_EQ(roots(), Files{"A@" + a});
}

TEST_F(CFiFiidLoaderTest, DirectoryOpensAndYieldsNoRoot) {
    const std::string a = document("a", "A");
    EXPECT_EQ(loader.import({folder.path(""), a}), 0);
    EXPECT_EQ(roots(), Files{"A@" + a});
}

TEST_F(CFiFiidLoaderTest, DocumentWithoutANodeAddsNothing) {
    EXPECT_EQ(loader.import({folder.write("a", "<other/>")}), 0);
    EXPECT_TRUE(loader.nodes.empty());
}

TEST_F(CFiFiidLoaderTest, MalformedDocumentKeepsTheRootBuiltBeforeTheFault) {
    const std::string file = folder.write("a", "<Node><objid>A</objid></Wrong>");
    testing::internal::CaptureStdout();
    EXPECT_EQ(loader.import({file}), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(roots(), Files{"A@" + file});
}

TEST_F(CFiFiidLoaderTest, NameListedTwiceYieldsTwoRoots) {
    const std::string a = document("a", "A");
    EXPECT_EQ(loader.import({a, a}), 0);
    EXPECT_EQ(roots(), (Files{"A@" + a, "A@" + a}));
    EXPECT_NE(loader.nodes[0], loader.nodes[1]);
}

TEST_F(CFiFiidLoaderTest, SecondImportAppendsRootsAndReplacesFiles) {
    const std::string a = document("a", "A");
    const std::string b = document("b", "B");
    EXPECT_EQ(loader.import({a}), 0);
    EXPECT_EQ(loader.import({b}), 0);
    EXPECT_EQ(roots(), (Files{"A@" + a, "B@" + b}));
    EXPECT_EQ(loader.files, Files{b});
}

TEST_F(CFiFiidLoaderTest, OneDocumentTracesLoadParserAndHandlerInTheOrderOfTheirLives) {
    const std::string file = folder.write("a", "<Node><objid>A</objid></Node>");
    CTraceRecorder recorder;
    EXPECT_EQ(loader.import({file}), 0);
    EXPECT_EQ(
        recorder.take(),
        progress({"Entering \n"}) + entryAndExit("") + progress({"Entering CFiFiidParser::CFiFiidParser\n"}) +
            entryAndExit("CFiFiidParser::init") + progress({"Exiting CFiFiidParser::CFiFiidParser\n"}) +
            entryAndExit("CFiFiidHandler::CFiFiidHandler") + entryAndExit("CFiFiidParser::setHandler") +
            progress({"Entering CFiFiidParser::parse\n"}) + entryAndExit("CFiFiidHandler::startElement") +
            entryAndExit("CFiFiidHandler::startElement") + entryAndExit("CFiFiidHandler::endElement") +
            entryAndExit("CFiFiidHandler::endElement") +
            progress({"Exiting CFiFiidHandler::endElement\n", "Exiting CFiFiidParser::parse\n"}) +
            entryAndExit("CFiFiidHandler::~CFiFiidHandler") + entryAndExit("CFiFiidParser::~CFiFiidParser") +
            progress({"Exiting \n"}));
}

TEST(CFiFiidLoader, DestructionTracesNothingAndDeletesNoNode) {
    const CTemporaryFolder folder;
    STrees trees;
    CTraceRecorder recorder;
    {
        CFiFiidLoader loader;
        EXPECT_EQ(loader.import({folder.write("a", "<Node><objid>A</objid></Node>")}), 0);
        trees.roots = loader.nodes;
        recorder.take();
    }
    EXPECT_EQ(recorder.take(), Trace());
    EXPECT_EQ(dump(trees.roots.at(0)), "(A|||0)");
}

}  // namespace
}  // namespace fi_test
