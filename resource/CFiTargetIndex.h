#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "resource/SFiResourceList.h"

class CFiUdid;

// A further target and the configuration that it stands in; both are null when none was found.
struct STargetInList {
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
    [[nodiscard]] STargetInList find(const CFiUdid& key, const CFiUdid& value) const;

private:
    // Device and enclosure.
    using Name = std::pair<std::string_view, std::string_view>;
    struct SNameHash {
        std::size_t operator()(const Name& name) const;
    };
    using Targets = std::unordered_map<Name, STargetInList, SNameHash>;

    // A table for each first target: one table for all would be too large for the processor's cache while it
    // is filled.
    std::unordered_map<Name, Targets, SNameHash> tables;
};
