#include "fiid/CFiXmlMemory.h"

#include <cstdint>
#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>

CFiXmlMemory::CFiXmlMemory() : reserve(new std::byte[kReserve]) {}

CFiXmlMemory::~CFiXmlMemory() {
    for (SBlock* block = blocks.next; block != nullptr;) {
        SBlock* const next = block->next;
        operator delete(block);
        block = next;
    }
}

void* CFiXmlMemory::allocate(XMLSize_t size) {
    void* const memory =
        size <= SIZE_MAX - sizeof(SBlock) ? operator new(sizeof(SBlock) + size, std::nothrow)
                                          : nullptr;
    if (memory == nullptr) {
        return drawOnReserve(size);
    }
    auto* const block = new (memory) SBlock{blocks.next, &blocks};
    if (block->next != nullptr) {
        block->next->previous = block;
    }
    blocks.next = block;
    return block + 1;
}

void CFiXmlMemory::deallocate(void* memory) {
    auto* const byte = static_cast<std::byte*>(memory);
    if (byte == nullptr || (byte >= reserve.get() && byte < reserve.get() + kReserve)) {
        return;
    }
    SBlock* const block = static_cast<SBlock*>(memory) - 1;
    block->previous->next = block->next;
    if (block->next != nullptr) {
        block->next->previous = block->previous;
    }
    operator delete(block);
}

void* CFiXmlMemory::drawOnReserve(std::size_t size) {
    constexpr std::size_t alignment = alignof(std::max_align_t);
    if (!isDrawing || size > kReserve - drawn) {
        throw xercesc::OutOfMemoryException();
    }
    std::byte* const memory = reserve.get() + drawn;
    drawn += (size + alignment - 1) / alignment * alignment;
    return memory;
}
