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

CFiTargetIndex::CFiTargetIndex(std::vector<SFiResourceList>& resourceSet)
    : slots(slotsFor(countTargets(resourceSet))) {
    for (SFiResourceList& list : resourceSet) {
        const std::size_t listHash = hashOfName(list);
        for (SFiResource& resource : list.resources) {
            insert(combined(listHash, hashOfName(resource)), {&list, &resource});
        }
    }
}

void CFiTargetIndex::insert(std::size_t hash, const STargetPlace& place) {
    const std::size_t mask = slots.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        SSlot& slot = slots[i];
        if (slot.place.resource == nullptr) {
            slot = {hash, place};
            return;
        }
        if (slot.hash == hash && haveSameName(*slot.place.list, *place.list) &&
            haveSameName(*slot.place.resource, *place.resource)) {
            // The set names this target twice; the first one counts.
            return;
        }
    }
}

STargetPlace CFiTargetIndex::find(const CFiUdid& key, const CFiUdid& value) const {
    const std::size_t hash = combined(hashOfName(key), hashOfName(value));
    const std::size_t mask = slots.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const SSlot& slot = slots[i];
        if (slot.place.resource == nullptr) {
            return {};
        }
        if (slot.hash == hash && haveSameName(*slot.place.list, key) &&
            haveSameName(*slot.place.resource, value)) {
            return slot.place;
        }
    }
}
