#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "resource/SFiResourceList.h"

class CFiUdid;

// Where a target stands in a resource set; both members are null when it was not found.
struct STargetPlace {
    SFiResourceList* list = nullptr;
    SFiResource* resource = nullptr;
};

// Finds the target of an identifier pair without a walk over the resource set: a hash table over every
// further target of every configuration. It points into the set, whose records must stay where they are
// and keep their names.
class CFiTargetIndex {
public:
    explicit CFiTargetIndex(std::vector<SFiResourceList>& resourceSet);

    // The first further target, in set order, that `value` names in a configuration whose first target
    // `key` names. Several configurations may share a first target.
    [[nodiscard]] STargetPlace find(const CFiUdid& key, const CFiUdid& value) const;

private:
    // The number of a place in `places`, counted from 1; 0 for an empty slot. The hash saves most looks
    // at places that are not the one.
    struct SSlot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0;
    };

    void insert(std::size_t hash, const STargetPlace& place);

    // The slot of the target with these names, or the empty one where it belongs.
    template <typename ListName, typename TargetName>
    std::size_t slotOf(std::size_t hash, const ListName& listName,
                       const TargetName& targetName) const;

    std::vector<STargetPlace> places;
    // A power of two in number, never more than half of them taken; linear probing.
    std::vector<SSlot> slots;
};
