#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include <xercesc/framework/MemoryManager.hpp>

// The memory of the XML library. When memory runs out, that library loses some of its blocks, and it cannot
// be set up or terminated by halves. So what it has lost is freed at the end of this object's life, and while
// it is set up and terminated it may draw on a reserve that was there before.
class CFiXmlMemory : public xercesc::MemoryManager {
public:
    CFiXmlMemory();
    ~CFiXmlMemory() override;
    CFiXmlMemory(const CFiXmlMemory&) = delete;
    CFiXmlMemory& operator=(const CFiXmlMemory&) = delete;

    // Throws the XML library's own OutOfMemoryException when there is none.
    void* allocate(XMLSize_t size) override;
    void deallocate(void* memory) override;
    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

    // Whether a block that cannot be had otherwise is taken from the reserve.
    void mayDrawOnReserve(bool isAllowed) { isDrawing = isAllowed; }

private:
    // Stands before each block.
    struct alignas(std::max_align_t) SBlock {
        SBlock* next = nullptr;
        SBlock* previous = nullptr;
    };

    // Setting up takes about 300 kB.
    static constexpr std::size_t kReserve = std::size_t{1} << 20;

    void* drawOnReserve(std::size_t size);

    SBlock blocks;
    std::unique_ptr<std::byte[]> reserve;
    std::size_t drawn = 0;
    bool isDrawing = false;
};
