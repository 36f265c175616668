#include "resource/CFiTargetIndex.h"

#include <functional>
#include <string>

#include "resource/CFiUdid.h"

namespace {

template <typename Record, typename Other>
bool haveSameName(const Record& left, const Other& right) {
    return left.device == right.device && left.enclosure == right.enclosure;
}

// The name of a list, a target or an identifier: device and enclosure.
template <typename Record>
std::size_t hashOfName(const Record& record) {
    const std::hash<std::string> hash;
    return hash(record.device) + 3 * hash(record.enclosure);
}

std::size_t combined(std::size_t listHash, std::size_t targetHash) {
    return 31 * listHash + targetHash;
}

std::size_t countTargets(const std::vector<SFiResourceList>& resourceSet) {
    std::size_t count = 0;
    for (const SFiResourceList& list : resourceSet) {
        count += list.resources.size();
    }
    return count;
}

std::size_t slotsFor(std::size_t count) {
    std::size_t slots = 2;
    while (slots < 2 * count) {
        slots *= 2;
    }
    return slots;
}

}  // namespace

CFiTargetIndex::CFiTargetIndex(std::vector<SFiResourceList>& resourceSet) {
    const std::size_t count = countTargets(resourceSet);
    places.reserve(count);
    slots.resize(slotsFor(count));
    for (SFiResourceList& list : resourceSet) {
        const std::size_t listHash = hashOfName(list);
        for (SFiResource& resource : list.resources) {
            insert(combined(listHash, hashOfName(resource)), {&list, &resource});
        }
    }
}

void CFiTargetIndex::insert(std::size_t hash, const STargetPlace& place) {
    SSlot& slot = slots[slotOf(hash, *place.list, *place.resource)];
    // A name that the set has twice keeps its first place.
    if (slot.number == 0) {
        places.push_back(place);
        slot = {static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(places.size())};
    }
}

STargetPlace CFiTargetIndex::find(const CFiUdid& key, const CFiUdid& value) const {
    const SSlot& slot = slots[slotOf(combined(hashOfName(key), hashOfName(value)), key, value)];
    return slot.number == 0 ? STargetPlace() : places[slot.number - 1];
}

template <typename ListName, typename TargetName>
std::size_t CFiTargetIndex::slotOf(std::size_t hash, const ListName& listName,
                                   const TargetName& targetName) const {
    const std::size_t mask = slots.size() - 1;
    std::size_t i = hash & mask;
    while (slots[i].number != 0) {
        const STargetPlace& place = places[slots[i].number - 1];
        if (slots[i].hash == static_cast<std::uint32_t>(hash) &&
            haveSameName(*place.list, listName) && haveSameName(*place.resource, targetName)) {
            break;
        }
        i = (i + 1) & mask;
    }
    return i;
}
