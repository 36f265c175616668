// Replaces the C library's allocation functions, so that every allocation of this process can be made to
// fail.

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "tests/contract/ShortageCount.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace {

fi_test::CShortageCount shortage;

// The blocks that are in use, in an open hash table. Of fixed size, because it must not allocate.
class CBlocks {
public:
    void clear() {
        for (void*& slot : slots) {
            slot = nullptr;
        }
        count = 0;
    }

    void add(void* block) {
        std::size_t slot = slotOf(block);
        while (slots[slot] != nullptr && slots[slot] != kFreed()) {
            slot = next(slot);
        }
        slots[slot] = block;
        ++count;
    }

    void remove(void* block) {
        if (count == 0 || block == nullptr) {
            return;
        }
        for (std::size_t slot = slotOf(block); slots[slot] != nullptr; slot = next(slot)) {
            if (slots[slot] == block) {
                slots[slot] = kFreed();
                --count;
                return;
            }
        }
    }

    std::size_t size() const { return count; }

private:
    static constexpr std::size_t kSlots = std::size_t{1} << 16;

    void* kFreed() { return this; }
    static std::size_t next(std::size_t slot) { return (slot + 1) % kSlots; }
    static std::size_t slotOf(const void* block) {
        return static_cast<std::size_t>(
            (reinterpret_cast<std::uintptr_t>(block) / 16 * 0x9E3779B97F4A7C15U) >> 48U);
    }

    void* slots[kSlots] = {};
    std::size_t count = 0;
};
CBlocks blocks;

bool fails() {
    if (shortage.fails()) {
        errno = ENOMEM;
        return true;
    }
    return false;
}

void* recorded(void* block) {
    if (shortage.isOn() && block != nullptr) {
        blocks.add(block);
    }
    return block;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    return fails() ? nullptr : recorded(__libc_malloc(size));
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : recorded(__libc_calloc(count, size));
}

__attribute__((visibility("default"))) void* realloc(void* block, std::size_t size) {
    if (fails()) {
        return nullptr;
    }
    blocks.remove(block);
    return recorded(__libc_realloc(block, size));
}

__attribute__((visibility("default"))) void free(void* block) {
    blocks.remove(block);
    __libc_free(block);
}

}  // extern "C"

namespace fi_test {

void startShortage(EShortage kind, std::size_t number) {
    blocks.clear();
    shortage.start(kind, number);
}

void endShortage() {
    shortage.end();
}

bool hasBeenShort() {
    return shortage.hasFailed();
}

std::size_t blocksLeftByShortage() {
    return blocks.size();
}

std::size_t allocationsSinceStart() {
    return shortage.allocations();
}

}  // namespace fi_test
