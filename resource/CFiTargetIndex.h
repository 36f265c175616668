#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "resource/SFiResourceList.h"

class CFiUdid;

// Where a target stands in a resource set; both members are null when it was not found.
struct STargetPlace {
    SFiResourceList* list = nullptr;
    SFiResource* resource = nullptr;
};

// Finds the target of an identifier pair without a walk over the resource set: hash tables over the
// further targets. It points into the set, whose records must stay where they are and keep their names.
class CFiTargetIndex {
public:
    explicit CFiTargetIndex(std::vector<SFiResourceList>& resourceSet);

    // The first further target, in set order, that `value` names in a configuration whose first target
    // `key` names. Several configurations may share a first target.
    [[nodiscard]] STargetPlace find(const CFiUdid& key, const CFiUdid& value) const;

private:
    struct SName {
        std::string_view device;
        std::string_view enclosure;

        bool operator==(const SName& other) const {
            return device == other.device && enclosure == other.enclosure;
        }
    };
    struct SNameHash {
        std::size_t operator()(const SName& name) const;
    };

    // The number of a place in `places`, counted from 1; 0 for an empty slot. The hash saves most looks
    // at places that are not the one.
    struct SSlot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0;
    };

    // The slots for all configurations with one first target, so that a table is filled while it is in
    // the cache: `size` slots from `start` on, a power of two, never more than half of them taken.
    struct STable {
        std::size_t targets = 0;
        std::size_t start = 0;
        std::size_t size = 0;
    };

    // The name of a record or an identifier.
    template <typename Named>
    static SName nameOf(const Named& named) {
        return {named.device, named.enclosure};
    }

    void layOutTables(const std::vector<SFiResourceList>& resourceSet);
    void insert(const STable& table, const STargetPlace& place);

    // The slot of the target of this name, or the empty one where it belongs.
    [[nodiscard]] std::size_t slotOf(const STable& table, const SName& name, std::uint32_t hash) const;

    std::unordered_map<SName, STable, SNameHash> tables;
    std::vector<STargetPlace> places;
    std::vector<SSlot> slots;
};
