#include "fiid/CFiXmlMemory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

// A block filled with a byte of its own.
struct SBlock {
    SBlock(CFiXmlMemory& memory, std::size_t size, unsigned char filling)
        : content(size, filling), block(memory.allocate(size)) {
        std::copy(content.begin(), content.end(), static_cast<unsigned char*>(block));
    }
    bool isIntact() const {
        return std::equal(content.begin(), content.end(), static_cast<unsigned char*>(block));
    }

    std::vector<unsigned char> content;
    void* block;
};

// Blocks of small and large sizes, more than fit into one of the pieces that memory is allocated in.
std::vector<SBlock> blocksOfManySizes(CFiXmlMemory& memory, unsigned char filling) {
    std::vector<SBlock> blocks;
    for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 100U, 511U, 512U, 513U, 4000U, 70000U, 200000U}) {
        for (int i = 0; i < 100; ++i) {
            blocks.emplace_back(memory, size, ++filling);
        }
    }
    return blocks;
}

TEST(CFiXmlMemory, BlocksAreApartAndAligned) {
    CFiXmlMemory memory;
    std::set<void*> places;
    for (const SBlock& block : blocksOfManySizes(memory, 0)) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.block) % alignof(std::max_align_t), 0U);
        EXPECT_TRUE(places.insert(block.block).second);
        EXPECT_TRUE(block.isIntact());
    }
}

TEST(CFiXmlMemory, BlocksStayIntactWhileOthersComeAndGo) {
    CFiXmlMemory memory;
    std::vector<SBlock> blocks = blocksOfManySizes(memory, 0);
    std::vector<SBlock> staying;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (i % 3 == 0) {
            staying.push_back(blocks[i]);
        } else {
            memory.deallocate(blocks[i].block);
        }
    }
    const std::vector<SBlock> later = blocksOfManySizes(memory, 100);
    for (const std::vector<SBlock>& all : {staying, later}) {
        for (const SBlock& block : all) {
            EXPECT_TRUE(block.isIntact()) << block.content.size();
        }
    }
    for (const SBlock& block : later) {
        memory.deallocate(block.block);
    }
}

TEST(CFiXmlMemory, BlockOfASizeIsUsedAgain) {
    CFiXmlMemory memory;
    void* const block = memory.allocate(100);
    memory.deallocate(block);
    EXPECT_EQ(memory.allocate(97), block);
}

// A leak checker reports this test if they are not.
TEST(CFiXmlMemory, BlocksThatAreLeftAreFreedInTheEnd) {
    CFiXmlMemory memory;
    EXPECT_EQ(blocksOfManySizes(memory, 0).size(), 1200U);
}

TEST(CFiXmlMemory, NothingIsFreedForNull) {
    CFiXmlMemory memory;
    memory.deallocate(nullptr);
}

TEST(CFiXmlMemory, BlockThatCannotBeHadIsAnExceptionOfTheXmlLibrary) {
    CFiXmlMemory memory;
    EXPECT_THROW(memory.allocate(SIZE_MAX), xercesc::OutOfMemoryException);
    memory.drawOnReserve(true);
    EXPECT_THROW(memory.allocate(SIZE_MAX), xercesc::OutOfMemoryException);
#ifndef __SANITIZE_ADDRESS__  // which takes so large a block for a fault
    std::thread([&memory] {
        EXPECT_THROW(memory.allocate(SIZE_MAX / 4), xercesc::OutOfMemoryException);
    }).join();
#endif
}

TEST(CFiXmlMemory, BlocksOfOtherThreadsStayIntactWhileTheOwnerGoesOn) {
    CFiXmlMemory memory;
    const auto useAndFree = [&memory](unsigned char filling) {
        for (int round = 0; round < 3; ++round) {
            for (const SBlock& block : blocksOfManySizes(memory, filling)) {
                EXPECT_TRUE(block.isIntact());
                memory.deallocate(block.block);
            }
        }
    };
    std::thread first(useAndFree, 1);
    std::thread second(useAndFree, 2);
    useAndFree(3);
    first.join();
    second.join();
}

TEST(CFiXmlMemory, BlocksOfTheOwnerMayBeFreedByOtherThreads) {
    CFiXmlMemory memory;
    const std::vector<SBlock> blocks = blocksOfManySizes(memory, 1);
    std::thread([&] {
        for (const SBlock& block : blocks) {
            memory.deallocate(block.block);
        }
    }).join();
    for (const SBlock& block : blocksOfManySizes(memory, 2)) {
        EXPECT_TRUE(block.isIntact());
    }
}

TEST(CFiXmlMemory, GivesBlocksToEveryThreadWhenItsOwnerIsDone) {
    CFiXmlMemory memory;
    const std::vector<SBlock> ownersBlocks = blocksOfManySizes(memory, 1);
    memory.leaveToOthers();
    const auto use = [&memory] {
        for (const SBlock& block : blocksOfManySizes(memory, 2)) {
            EXPECT_TRUE(block.isIntact());
            memory.deallocate(block.block);
        }
    };
    std::thread other(use);
    use();
    other.join();
    for (const SBlock& block : ownersBlocks) {
        EXPECT_TRUE(block.isIntact());
        memory.deallocate(block.block);
    }
}

TEST(CFiXmlMemory, ExceptionsUseTheSameMemory) {
    CFiXmlMemory memory;
    EXPECT_EQ(memory.getExceptionMemoryManager(), &memory);
}

}  // namespace

TEST(CFiXmlMemory, UsesTheBlocksOfItsOwnerAgainForAThreadThatTakesItOver) {
    CFiXmlMemory memory;
    void* const ofOwner = memory.allocate(64);
    memory.leaveToOthers();
    std::thread([&memory, ofOwner] {
        memory.takeOver();
        memory.deallocate(ofOwner);
        EXPECT_EQ(memory.allocate(64), ofOwner);
        memory.leaveToOthers();
    }).join();
}
