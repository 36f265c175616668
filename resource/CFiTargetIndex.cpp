#include "resource/CFiTargetIndex.h"

#include <functional>

#include "resource/CFiUdid.h"

std::size_t CFiTargetIndex::SNameHash::operator()(const Name& name) const {
    const std::hash<std::string_view> hash;
    return hash(name.first) + 3 * hash(name.second);
}

CFiTargetIndex::CFiTargetIndex(std::vector<SFiResourceList>& resourceSet) {
    tables.reserve(resourceSet.size());
    for (SFiResourceList& list : resourceSet) {
        Targets& targets = tables[{list.device, list.enclosure}];
        if (targets.empty()) {
            targets.reserve(list.resources.size());
        }
        for (SFiResource& resource : list.resources) {
            // The first of several targets of the same name counts.
            targets.try_emplace({resource.device, resource.enclosure}, STargetInList{&list, &resource});
        }
    }
}

STargetInList CFiTargetIndex::find(const CFiUdid& key, const CFiUdid& value) const {
    const auto table = tables.find({key.device, key.enclosure});
    if (table == tables.end()) {
        return {};
    }
    const auto found = table->second.find({value.device, value.enclosure});
    return found == table->second.end() ? STargetInList() : found->second;
}
