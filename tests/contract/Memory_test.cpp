// What a call leaves allocated.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"
#include "tests/contract/Ledger.h"
#include "tests/support/Golden.h"

namespace fi_test {
namespace {

std::ptrdiff_t openFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

const std::string kHolder = toXml(backup("1", {{"encA##lun1", "encA##snap1"}}));
const std::string kMalformed =
    "<Node><objid>" + udid("encA##lun1") + "</objid><altobjid>bad</altobjid></Node>";
const std::string kIllFormed = "<Node><Node><objid>" + udid("encA##lun1") + "</objid>";
// Roots that a later top-level Node replaces stay allocated. Their texts are short enough to need no blocks
// of their own.
const std::string kSeveralRoots =
    "<a><Node><objid>1</objid><Node/></Node>"  // two nodes, one list of children
    "<Node><objid>2</objid></Node>"            // one node
    "<Node><Node/><Node/></Node></a>";         // the root that counts
constexpr std::size_t kBlocksOfDroppedRoots = 4;

class CMemory : public CContractTest {
protected:
    // The libraries under ours fill caches once, so calls are made before anything is recorded. They differ
    // from the calls of the tests: otherwise a block that ours kept of such a call would be taken for a
    // cache.
    CMemory() {
        for (const std::string& document : {kHolder, kMalformed, kIllFormed}) {
            std::int32_t flag = 0;
            process("encA##lun1;snap1", {write("warm-up.xml", document)}, &flag, 1);
        }
    }
    ~CMemory() override { releaseBlocksLeft(); }

    std::size_t leftByCall(const std::string& configuration, const std::vector<std::string>& names,
                           std::int32_t flagWord = 0) {
        std::vector<std::int32_t> flags(names.size(), flagWord);
        return leftByCall(configuration, names, flags.data(), static_cast<std::int32_t>(names.size()));
    }

    std::size_t leftByCall(const std::string& configuration, const std::vector<std::string>& names,
                           std::int32_t* flags, std::int32_t size) {
        const std::ptrdiff_t filesBefore = openFiles();
        startRecording();
        process(configuration, names, flags, size);
        stopRecording();
        EXPECT_EQ(openFiles(), filesBefore);
        return blocksLeft();
    }

    std::int32_t status = -1;
    bool hasThrown = false;

private:
    // Makes a call and leaves nothing of its own allocated.
    void process(const std::string& configuration, const std::vector<std::string>& names, std::int32_t* flags,
                 std::int32_t size) {
        std::vector<const char*> files;
        for (const std::string& name : names) {
            files.push_back(name.c_str());
        }
        char* result = nullptr;
        status = -1;
        hasThrown = false;
        try {
            status = entryPoint()(files.data(), configuration.c_str(), flags, size, &result);
        } catch (const CFiUdidException&) {
            hasThrown = true;
        }
        std::free(result);
    }
};

TEST_F(CMemory, LedgerRecordsBlocksUntilTheyAreFreed) {
    startRecording();
    auto* const block = new std::string("long enough to need a block of its own");
    stopRecording();
    EXPECT_EQ(blocksLeft(), 2U);
    delete block;
    EXPECT_EQ(blocksLeft(), 0U);
}

TEST_F(CMemory, LedgerSeesWhatTheLibraryAllocates) {
    leftByCall("a configuration ##that is too long for a string without a block of its own", {});
    EXPECT_GT(recordedAllocations(), 0U);
}

TEST_F(CMemory, FirstBackupLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1&encB##lun2;a snapshot with a long name", {}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, FirstBackupWithoutATargetLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1&encB##a device with a long name", {}), 0U);
    EXPECT_EQ(status, 3);
}

TEST_F(CMemory, RejectedConfigurationLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1&an enclosure with a long name##", {}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, RejectedArgumentsLeaveNothing) {
    EXPECT_EQ(leftByCall("an enclosure with a long name##lun1;snap1", {}, nullptr, 1), 0U);
    EXPECT_EQ(status, 3);
}

TEST_F(CMemory, NegativeSizeLeavesNothing) {
    std::int32_t flag = 0;
    EXPECT_EQ(leftByCall("an enclosure with a long name##lun1;snap1", {}, &flag, -1), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, SuccessLeavesNothing) {
    EXPECT_EQ(
        leftByCall("encA##lun1;snap1", {write("a.xml", kHolder), write("b.xml", kHolder),
                                        write("invalid.xml", toXml(backup("2", {{"encB##x", "encB##y"}})))}),
        0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, NameListedTwiceLeavesNothing) {
    const std::string a = write("a.xml", kHolder);
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {a, a}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, FailureLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {write("a.xml", kHolder), write("b.xml", kHolder)}, 4), 0U);
    EXPECT_EQ(status, 3);
}

TEST_F(CMemory, MissingFileLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1",
                         {write("a.xml", kHolder), path("missing.xml"), write("b.xml", kHolder)}),
              0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, IllFormedDocumentLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {write("a.xml", "<Node><Node><objid>x</objid></Nod>")}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, DocumentWithoutANodeLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {write("a.xml", ""), write("b.xml", "<other/>")}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, ExceptionLeavesNothing) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1",
                         {write("a.xml", kHolder), write("bad.xml", kMalformed), write("b.xml", kHolder)}),
              0U);
    EXPECT_TRUE(hasThrown);
}

// The whole trace of such a call is compared here, because the replaced root stays allocated, which in any
// other test would be reported as a leak.
TEST_F(CMemory, DocumentWithSeveralTopLevelNodesIsReadAsItsLast) {
    const std::string several =
        write("several.xml",
              "<backups><Node><objid>first</objid><timeStamp>20260101</timeStamp></Node>"
              "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1</altobjid>"
              "<timeStamp>20260102</timeStamp></Node></backups>");
    std::string trace;
    std::int32_t flag = 0;
    {
        CTraceRecorder recorder;
        leftByCall("encA##lun1;snap1", {several}, &flag, 1);
        trace = asGoldenText(recorder.take(), path(""));
    }
    EXPECT_EQ(trace, goldenText("several-top-level-nodes"));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(flag, 2);
    EXPECT_EQ(blocksLeft(), 1U);
}

TEST_F(CMemory, DocumentWithSeveralTopLevelNodesLeavesExactlyTheDroppedTrees) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {write("a.xml", kSeveralRoots)}), kBlocksOfDroppedRoots);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, EveryImportOfADocumentWithSeveralTopLevelNodesLeavesItsDroppedTrees) {
    const std::string a = write("a.xml", kSeveralRoots);
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {a, write("b.xml", kHolder), a}), 2 * kBlocksOfDroppedRoots);
    EXPECT_EQ(status, 0);
}

TEST_F(CMemory, FailureLeavesExactlyTheDroppedTrees) {
    EXPECT_EQ(leftByCall("encA##lun1", {write("a.xml", kSeveralRoots)}), kBlocksOfDroppedRoots);
    EXPECT_EQ(status, 3);
}

TEST_F(CMemory, ExceptionLeavesExactlyTheDroppedTrees) {
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {write("a.xml", kSeveralRoots), write("bad.xml", kMalformed)}),
              kBlocksOfDroppedRoots);
    EXPECT_TRUE(hasThrown);
}

}  // namespace
}  // namespace fi_test
