// What a call leaves allocated. The library, and the libraries under it, find this program's operator new
// before the runtime's, so every block is known here.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

namespace {

// Before each block, so that a block can be taken off the list when it is freed. Keeps the block aligned.
struct alignas(std::max_align_t) SHeader {
    SHeader* next = nullptr;
    SHeader* previous = nullptr;
    bool isRecorded = false;
};

// The blocks allocated while recording and not freed since.
SHeader recorded;
bool isRecording = false;

void* allocate(std::size_t size) {
    void* const memory = std::malloc(sizeof(SHeader) + size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    auto* const header = new (memory) SHeader;
    if (isRecording) {
        header->isRecorded = true;
        header->previous = &recorded;
        header->next = recorded.next;
        if (recorded.next != nullptr) {
            recorded.next->previous = header;
        }
        recorded.next = header;
    }
    return header + 1;
}

void release(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    SHeader* const header = static_cast<SHeader*>(block) - 1;
    if (header->isRecorded) {
        header->previous->next = header->next;
        if (header->next != nullptr) {
            header->next->previous = header->previous;
        }
    }
    std::free(header);
}

}  // namespace

#define EXPORTED __attribute__((visibility("default")))
EXPORTED void* operator new(std::size_t size) {
    return allocate(size);
}
EXPORTED void* operator new[](std::size_t size) {
    return allocate(size);
}
EXPORTED void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
EXPORTED void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
EXPORTED void operator delete(void* block) noexcept {
    release(block);
}
EXPORTED void operator delete[](void* block) noexcept {
    release(block);
}
EXPORTED void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
EXPORTED void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}

namespace {

using fi_test::backup;
using fi_test::toXml;
using fi_test::udid;

std::size_t countRecorded() {
    std::size_t count = 0;
    for (const SHeader* block = recorded.next; block != nullptr; block = block->next) {
        ++count;
    }
    return count;
}

void releaseRecorded() {
    while (recorded.next != nullptr) {
        release(recorded.next + 1);
    }
}

class Memory : public fi_test::CContractTest {
protected:
    ~Memory() override { releaseRecorded(); }

    // The blocks that a call leaves behind, when one like it went before: the libraries under ours fill
    // caches of their own once.
    std::size_t leftBySecondCall(const std::string& configuration,
                                 const std::vector<std::string>& names, std::int32_t flagWord = 0) {
        process(configuration, names, flagWord);
        return leftByCall(configuration, names, flagWord);
    }

    std::size_t leftByCall(const std::string& configuration, const std::vector<std::string>& names,
                           std::int32_t flagWord) {
        isRecording = true;
        process(configuration, names, flagWord);
        isRecording = false;
        return countRecorded();
    }

    std::int32_t status = -1;
    bool hasThrown = false;

    // Allocates nothing of its own that lives on.
    void process(const std::string& configuration, const std::vector<std::string>& names,
                 std::int32_t flagWord) {
        std::vector<const char*> files;
        for (const std::string& name : names) {
            files.push_back(name.c_str());
        }
        std::vector<std::int32_t> flags(names.size(), flagWord);
        char* result = nullptr;
        hasThrown = false;
        try {
            status = fi_test::entryPoint()(files.data(), configuration.c_str(), flags.data(),
                                           static_cast<std::int32_t>(names.size()), &result);
        } catch (const CFiUdidException&) {
            hasThrown = true;
        }
        std::free(result);
    }
};

const std::string kHolder = toXml(backup("1", {{"encA##lun1", "encA##snap1"}}));

TEST_F(Memory, LedgerSeesWhatTheLibraryAllocates) {
    isRecording = true;
    auto* const block = new std::string("long enough to need a block of its own");
    isRecording = false;
    EXPECT_EQ(countRecorded(), 2U);
    delete block;
    EXPECT_EQ(countRecorded(), 0U);
}

TEST_F(Memory, FirstBackupLeavesNothing) {
    EXPECT_EQ(leftBySecondCall("encA##lun1;snap1&encB##lun2;snap2", {}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(Memory, SuccessLeavesNothing) {
    EXPECT_EQ(
        leftBySecondCall("encA##lun1;snap1", {write("a.xml", kHolder), write("b.xml", kHolder)}),
        0U);
    EXPECT_EQ(status, 0);
}

TEST_F(Memory, FailureLeavesNothing) {
    EXPECT_EQ(leftBySecondCall("encA##lun1;snap1", {write("a.xml", kHolder)}, 4), 0U);
    EXPECT_EQ(status, 3);
}

TEST_F(Memory, MissingFileLeavesNothing) {
    EXPECT_EQ(leftBySecondCall("encA##lun1;snap1", {write("a.xml", kHolder), path("missing.xml")}),
              0U);
    EXPECT_EQ(status, 0);
}

TEST_F(Memory, MalformedDocumentLeavesNothing) {
    EXPECT_EQ(
        leftBySecondCall("encA##lun1;snap1", {write("a.xml", "<Node><Node><objid>x</objid>")}), 0U);
    EXPECT_EQ(status, 0);
}

TEST_F(Memory, ExceptionLeavesNothing) {
    const std::string bad = write("bad.xml", "<Node><objid>" + udid("encA##lun1") +
                                                 "</objid><altobjid>bad</altobjid></Node>");
    EXPECT_EQ(leftBySecondCall("encA##lun1;snap1", {write("a.xml", kHolder), bad}), 0U);
    EXPECT_TRUE(hasThrown);
}

// A root that a later top-level Node replaced is known to nobody. Its texts are short enough to need no
// blocks of their own.
TEST_F(Memory, DocumentWithSeveralTopLevelNodesLeavesExactlyTheDroppedTrees) {
    const std::string a =
        write("a.xml",
              "<a><Node><objid>1</objid><Node/></Node>"  // two nodes, one list of children
              "<Node><objid>2</objid></Node>"            // one node
              "<Node><Node/><Node/></Node></a>");        // the root that counts
    process("encA##lun1;snap1", {write("b.xml", kHolder)}, 0);
    EXPECT_EQ(leftByCall("encA##lun1;snap1", {a}, 0), 4U);
    EXPECT_EQ(status, 0);
}

}  // namespace
