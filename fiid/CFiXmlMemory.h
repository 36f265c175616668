#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>

#include <xercesc/framework/MemoryManager.hpp>

// The memory of the XML library. When memory runs out, that library loses some of its blocks, and it offers
// no way to undo a set-up or to complete a termination that failed in the middle. So all that it got is freed
// at the end of this object's life, lost or not, and while it is set up and terminated it draws on a reserve
// that was there before.
//
// Small blocks, which a reader makes and drops by the hundred for each document, are cut from larger ones and
// used again. Only the owner gets such blocks: the thread that made this object, until it leaves it to others
// or another one takes it over. Whoever else uses the XML library is given blocks of the process's own heap,
// which is thread-safe; those that the XML library loses when memory runs out stay lost.
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

    // Whether blocks come from the reserve, as far as it reaches.
    void drawOnReserve(bool isWanted) { isDrawing = isWanted; }

    // Ends the owner's use. Others may go on using this object, from any thread, until it is destroyed.
    void leaveToOthers() { owner = std::thread::id(); }

    // Makes this thread the owner. To be called only while no thread is, and under the lock that the last
    // owner held: it makes what that thread wrote visible to this one.
    void takeOver() { owner = std::this_thread::get_id(); }

private:
    static constexpr std::size_t kUnit = alignof(std::max_align_t);
    static constexpr std::size_t kLargestSmall = 512;
    static constexpr std::size_t kChunk = std::size_t{64} << 10;
    // Setting up takes about 400 kB.
    static constexpr std::size_t kReserve = std::size_t{1} << 20;

    // Stands before each block that the XML library gets.
    union alignas(std::max_align_t) UHeader {
        // In use: the block's units, or one of the values below.
        std::size_t units;
        // Not in use: the next block of its size.
        UHeader* next;
    };
    static constexpr std::size_t kLarge = 0;
    // On the process's own heap.
    static constexpr std::size_t kOnHeap = SIZE_MAX;

    // Stands before each piece of memory that this class gets: a chunk, or a large block with its header.
    struct alignas(std::max_align_t) SPiece {
        SPiece* next = nullptr;
        SPiece* previous = nullptr;
    };

    static void* allocateOnHeap(std::size_t size);
    [[nodiscard]] bool isOwnersThread() const { return owner == std::this_thread::get_id(); }
    UHeader* cutFromChunk(std::size_t size);
    std::byte* newPiece(std::size_t size);
    // Null when it does not reach.
    std::byte* takeFromReserve(std::size_t size);
    [[nodiscard]] bool isOfReserve(const void* memory) const;

    std::atomic<std::thread::id> owner{std::this_thread::get_id()};
    // The first unused block of each size; the index is the size in units.
    std::array<UHeader*, kLargestSmall / kUnit + 1> unused{};
    std::byte* chunk = nullptr;
    std::size_t chunkLeft = 0;
    SPiece pieces;
    std::unique_ptr<std::byte[]> reserve;
    std::size_t drawn = 0;
    bool isDrawing = false;
};
