#include "fiid/CFiXmlMemory.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

TEST(CFiXmlMemory, BlocksAreApartAndAligned) {
    CFiXmlMemory memory;
    std::vector<void*> blocks;
    for (std::size_t size = 1; size <= 100; ++size) {
        blocks.push_back(memory.allocate(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) % alignof(std::max_align_t), 0U);
        std::memset(blocks.back(), static_cast<int>(size), size);
    }
    for (std::size_t size = 1; size <= 100; ++size) {
        const std::vector<unsigned char> expected(size, static_cast<unsigned char>(size));
        EXPECT_EQ(std::memcmp(blocks[size - 1], expected.data(), size), 0) << size;
    }
    // In an order that takes them from either end and from between.
    for (std::size_t i = 0; i < 100; ++i) {
        memory.deallocate(blocks[i * 37 % 100]);
    }
}

// A leak checker sees those that are not.
TEST(CFiXmlMemory, BlocksThatAreLeftAreFreedInTheEnd) {
    CFiXmlMemory memory;
    for (int i = 0; i < 3; ++i) {
        EXPECT_NE(memory.allocate(1000), nullptr);
    }
    memory.deallocate(memory.allocate(1000));
}

TEST(CFiXmlMemory, NothingIsFreedForNull) {
    CFiXmlMemory memory;
    memory.deallocate(nullptr);
}

TEST(CFiXmlMemory, BlockThatCannotBeHadIsAnExceptionOfTheXmlLibrary) {
    CFiXmlMemory memory;
    EXPECT_THROW(memory.allocate(SIZE_MAX), xercesc::OutOfMemoryException);
    memory.mayDrawOnReserve(true);
    EXPECT_THROW(memory.allocate(SIZE_MAX), xercesc::OutOfMemoryException);
}

TEST(CFiXmlMemory, ExceptionsUseTheSameMemory) {
    CFiXmlMemory memory;
    EXPECT_EQ(memory.getExceptionMemoryManager(), &memory);
}

}  // namespace
