#pragma once

#include <cstddef>
#include <string_view>
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
    struct SSlot {
        std::size_t hash = 0;
        STargetPlace place;
    };

    void insert(std::size_t hash, const STargetPlace& place);

    // A power of two in number, never more than half of them taken; linear probing.
    std::vector<SSlot> slots;
};
