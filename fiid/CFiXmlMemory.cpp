#include "fiid/CFiXmlMemory.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>

#include "fiid/host_library.h"

CFiXmlMemory::CFiXmlMemory() : reserve(new std::byte[kReserve]) {}

CFiXmlMemory::~CFiXmlMemory() {
    for (SPiece* piece = pieces.next; piece != nullptr;) {
        SPiece* const next = piece->next;
        operator delete(piece);
        piece = next;
    }
}

void* CFiXmlMemory::allocate(XMLSize_t size) {
    if (size > SIZE_MAX / 2) {
        throw xercesc::OutOfMemoryException();
    }
    if constexpr (kInHostLibrary) {
        void* const memory = operator new(size, std::nothrow);
        return memory != nullptr ? memory : drawOnReserve(size);
    }
    if (size > kLargestSmall) {
        return new (newPiece(sizeof(UHeader) + size)) UHeader{0} + 1;
    }
    const std::size_t units = std::max<std::size_t>((size + kUnit - 1) / kUnit, 1);
    UHeader* header = unused[units];
    if (header != nullptr) {
        unused[units] = header->next;
    } else {
        header = cutFromChunk(sizeof(UHeader) + units * kUnit);
    }
    header->units = units;
    return header + 1;
}

void CFiXmlMemory::deallocate(void* memory) {
    if (memory == nullptr) {
        return;
    }
    if constexpr (kInHostLibrary) {
        if (!isOfReserve(memory)) {
            operator delete(memory);
        }
        return;
    }
    UHeader* const header = static_cast<UHeader*>(memory) - 1;
    const std::size_t units = header->units;
    if (units != 0) {
        header->next = unused[units];
        unused[units] = header;
        return;
    }
    if (isOfReserve(memory)) {
        return;
    }
    SPiece* const piece = reinterpret_cast<SPiece*>(header) - 1;
    piece->previous->next = piece->next;
    if (piece->next != nullptr) {
        piece->next->previous = piece->previous;
    }
    operator delete(piece);
}

CFiXmlMemory::UHeader* CFiXmlMemory::cutFromChunk(std::size_t size) {
    if (chunkLeft < size) {
        chunk = newPiece(kChunk);
        chunkLeft = kChunk;
    }
    auto* const header = new (chunk) UHeader{0};
    chunk += size;
    chunkLeft -= size;
    return header;
}

std::byte* CFiXmlMemory::newPiece(std::size_t size) {
    void* const memory = operator new(sizeof(SPiece) + size, std::nothrow);
    if (memory == nullptr) {
        return drawOnReserve(size);
    }
    auto* const piece = new (memory) SPiece{pieces.next, &pieces};
    if (piece->next != nullptr) {
        piece->next->previous = piece;
    }
    pieces.next = piece;
    return reinterpret_cast<std::byte*>(piece + 1);
}

std::byte* CFiXmlMemory::drawOnReserve(std::size_t size) {
    const std::size_t aligned = (size + kUnit - 1) / kUnit * kUnit;
    if (!isDrawing || aligned > kReserve - drawn) {
        throw xercesc::OutOfMemoryException();
    }
    std::byte* const memory = reserve.get() + drawn;
    drawn += aligned;
    return memory;
}

bool CFiXmlMemory::isOfReserve(const void* memory) const {
    const auto* const byte = static_cast<const std::byte*>(memory);
    return byte >= reserve.get() && byte < reserve.get() + kReserve;
}
