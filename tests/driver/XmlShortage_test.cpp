// A host that keeps the XML library set up provides its memory. Each block that the XML library asks for
// fails in turn: the call throws and leaves the outputs alone, and the next call works. Blocks that the XML
// library then forgets to free are left to the host.

#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "driver/fi_process_backups.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_test {
namespace {

class CFailingMemory : public xercesc::MemoryManager {
public:
    ~CFailingMemory() override {
        for (void* block : blocks) {
            std::free(block);
        }
    }

    void* allocate(XMLSize_t size) override {
        if (++count == failing) {
            throw xercesc::OutOfMemoryException();
        }
        void* const block = std::malloc(size);
        blocks.insert(block);
        return block;
    }
    void deallocate(void* block) override {
        blocks.erase(block);
        std::free(block);
    }
    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

    void failAt(std::size_t number) {
        count = 0;
        failing = number;
    }
    bool hasFailed() const { return failing != 0 && count >= failing; }

private:
    std::set<void*> blocks;
    std::size_t count = 0;
    std::size_t failing = 0;
};

class CXmlShortage : public testing::Test {
protected:
    CXmlShortage() {
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
                                              &memory);
    }
    ~CXmlShortage() override {
        memory.failAt(0);
        xercesc::XMLPlatformUtils::Terminate();
    }

    void call() {
        const char* const files[] = {first.c_str(), second.c_str()};
        flags[0] = flags[1] = 8;
        result = nullptr;
        hasThrown = false;
        try {
            status = fi_process_backups(files, "encA##lun1;snap1", flags, 2, &result);
        } catch (const xercesc::OutOfMemoryException&) {
            hasThrown = true;
        }
    }

    void expectUsualOutcome() {
        EXPECT_FALSE(hasThrown);
        EXPECT_EQ(status, 0);
        EXPECT_STREQ(result, "[encA##lun1;encA##snap1]");
        EXPECT_EQ(flags[0], 2);
        EXPECT_EQ(flags[1], 0);
        std::free(result);
    }

    void failAtEachBlock() {
        call();
        expectUsualOutcome();
        std::size_t number = 0;
        for (;;) {
            SCOPED_TRACE(++number);
            memory.failAt(number);
            call();
            if (!memory.hasFailed()) {
                break;
            }
            ASSERT_TRUE(hasThrown);
            ASSERT_EQ(result, nullptr);
            ASSERT_EQ(flags[0], 8);
            ASSERT_EQ(flags[1], 8);
            memory.failAt(0);
            call();
            expectUsualOutcome();
        }
        expectUsualOutcome();
        std::printf("%zu blocks\n", number - 1);
        EXPECT_GT(number, 100U);
    }

    CTemporaryFolder folder;
    const std::string first =
        folder.write("a.xml",
                     "<?xml version='1.0' encoding='UTF-8'?>\n<Node a='b'><!-- a comment --><objid>"
                     "UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1</altobjid></Node>");
    std::string second = folder.write("b.xml", "<Node><objid>L\xC3\xBCneburg</objid>");
    CFailingMemory memory;
    std::int32_t status = -1;
    std::int32_t flags[2] = {8, 8};
    char* result = nullptr;
    bool hasThrown = false;
};

TEST_F(CXmlShortage, AtEachBlockThrowsAndTheNextCallWorks) {
    failAtEachBlock();
}

TEST_F(CXmlShortage, AtEachBlockOfAnEntityThrowsAndTheNextCallWorks) {
    // Later packages of the XML library have this function. When memory runs out in it, they free a reader
    // twice, which this library cannot prevent.
    constexpr const char* kFreesItsReaderTwice =
        "_ZN11xercesc_3_29ReaderMgr21pushReaderAdoptEntityEPNS_9XMLReaderEPNS_13XMLEntityDeclEb";
    if (dlsym(RTLD_DEFAULT, kFreesItsReaderTwice) != nullptr) {
        GTEST_SKIP();
    }
    second = folder.write("b.xml",
                          "<!DOCTYPE Node [<!ENTITY e 'value'>]><Node><objid>&e; L\xC3\xBCneburg</objid>");
    failAtEachBlock();
}

}  // namespace
}  // namespace fi_test
