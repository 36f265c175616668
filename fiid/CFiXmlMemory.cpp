#include "fiid/CFiXmlMemory.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include <xercesc/util/OutOfMemoryException.hpp>

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
    if (!isOwnersThread()) {
        return allocateOnHeap(size);
    }
    if (size > kLargestSmall) {
        return new (newPiece(sizeof(UHeader) + size)) UHeader{kLarge} + 1;
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
    UHeader* const header = static_cast<UHeader*>(memory) - 1;
    const std::size_t units = header->units;
    if (units == kOnHeap) {
        operator delete(header);
        return;
    }
    if (!isOwnersThread()) {
        // It stays allocated until this object ends, because only the owner's thread may change the lists.
        return;
    }
    if (units != kLarge) {
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

void* CFiXmlMemory::allocateOnHeap(std::size_t size) {
    void* const memory = operator new(sizeof(UHeader) + size, std::nothrow);
    if (memory == nullptr) {
        throw xercesc::OutOfMemoryException();
    }
    return new (memory) UHeader{kOnHeap} + 1;
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
    if (isDrawing) {
        if (std::byte* const drawnNow = takeFromReserve(size)) {
            return drawnNow;
        }
    }
    void* const memory = operator new(sizeof(SPiece) + size, std::nothrow);
    if (memory == nullptr) {
        throw xercesc::OutOfMemoryException();
    }
    auto* const piece = new (memory) SPiece{pieces.next, &pieces};
    if (piece->next != nullptr) {
        piece->next->previous = piece;
    }
    pieces.next = piece;
    return reinterpret_cast<std::byte*>(piece + 1);
}

std::byte* CFiXmlMemory::takeFromReserve(std::size_t size) {
    const std::size_t aligned = (size + kUnit - 1) / kUnit * kUnit;
    if (aligned > kReserve - drawn) {
        return nullptr;
    }
    std::byte* const memory = reserve.get() + drawn;
    drawn += aligned;
    return memory;
}

bool CFiXmlMemory::isOfReserve(const void* memory) const {
    const auto* const byte = static_cast<const std::byte*>(memory);
    return byte >= reserve.get() && byte < reserve.get() + kReserve;
}
