#include "resource/CFiTargetIndex.h"

#include <functional>

#include "resource/CFiUdid.h"

std::size_t CFiTargetIndex::SNameHash::operator()(const SName& name) const {
    const std::hash<std::string_view> hash;
    return hash(name.device) + 3 * hash(name.enclosure);
}

CFiTargetIndex::CFiTargetIndex(std::vector<SFiResourceList>& resourceSet) {
    layOutTables(resourceSet);
    for (SFiResourceList& list : resourceSet) {
        const STable& table = tables.at(nameOf(list));
        for (SFiResource& resource : list.resources) {
            insert(table, {&list, &resource});
        }
    }
}

void CFiTargetIndex::layOutTables(const std::vector<SFiResourceList>& resourceSet) {
    std::size_t targets = 0;
    tables.reserve(resourceSet.size());
    for (const SFiResourceList& list : resourceSet) {
        tables[nameOf(list)].targets += list.resources.size();
        targets += list.resources.size();
    }

    std::size_t start = 0;
    for (auto& [name, table] : tables) {
        table.start = start;
        table.size = 2;
        while (table.size < 2 * table.targets) {
            table.size *= 2;
        }
        start += table.size;
    }
    slots.resize(start);
    places.reserve(targets);
}

void CFiTargetIndex::insert(const STable& table, const STargetPlace& place) {
    const SName name = nameOf(*place.resource);
    const auto hash = static_cast<std::uint32_t>(SNameHash()(name));
    SSlot& slot = slots[slotOf(table, name, hash)];
    // A name that comes again keeps its first place.
    if (slot.number == 0) {
        places.push_back(place);
        slot = {hash, static_cast<std::uint32_t>(places.size())};
    }
}

STargetPlace CFiTargetIndex::find(const CFiUdid& key, const CFiUdid& value) const {
    const auto table = tables.find(nameOf(key));
    if (table == tables.end()) {
        return {};
    }
    const SName name = nameOf(value);
    const auto hash = static_cast<std::uint32_t>(SNameHash()(name));
    const SSlot& slot = slots[slotOf(table->second, name, hash)];
    return slot.number == 0 ? STargetPlace() : places[slot.number - 1];
}

std::size_t CFiTargetIndex::slotOf(const STable& table, const SName& name, std::uint32_t hash) const {
    for (std::size_t i = hash;; ++i) {
        const std::size_t position = table.start + (i & (table.size - 1));
        const SSlot& slot = slots[position];
        if (slot.number == 0 || (slot.hash == hash && nameOf(*places[slot.number - 1].resource) == name)) {
            return position;
        }
    }
}
