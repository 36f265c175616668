#include "tests/contract/Ledger.h"

#include <cstdlib>
#include <new>

#include "tests/contract/ShortageCount.h"

namespace {

// Stands before each block, so that the block can be taken off the list when it is freed. Its size keeps the
// block aligned.
struct alignas(std::max_align_t) SHeader {
    SHeader* next = nullptr;
    SHeader* previous = nullptr;
    bool isRecorded = false;
};

SHeader recorded;
bool isRecording = false;
std::size_t allocations = 0;
fi_test::CShortageCount shortage;
std::size_t blocksBeforeShortage = 0;

void* allocate(std::size_t size) noexcept {
    void* const memory = shortage.fails() ? nullptr : std::malloc(sizeof(SHeader) + size);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* const header = new (memory) SHeader;
    if (isRecording) {
        ++allocations;
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

void* allocateOrThrow(std::size_t size) {
    void* const block = allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
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
    return allocateOrThrow(size);
}
EXPORTED void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
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

namespace fi_test {

void startRecording() {
    allocations = 0;
    isRecording = true;
}

void stopRecording() {
    isRecording = false;
}

std::size_t recordedAllocations() {
    return allocations;
}

std::size_t blocksLeft() {
    std::size_t count = 0;
    for (const SHeader* block = recorded.next; block != nullptr; block = block->next) {
        ++count;
    }
    return count;
}

void releaseBlocksLeft() {
    while (recorded.next != nullptr) {
        release(recorded.next + 1);
    }
}

void startShortage(EShortage kind, std::size_t number) {
    blocksBeforeShortage = blocksLeft();
    startRecording();
    shortage.start(kind, number);
}

void endShortage() {
    shortage.end();
    stopRecording();
}

bool hasBeenShort() {
    return shortage.hasFailed();
}

std::size_t blocksLeftByShortage() {
    return blocksLeft() - blocksBeforeShortage;
}

std::size_t allocationsSinceStart() {
    return shortage.allocations();
}

}  // namespace fi_test
