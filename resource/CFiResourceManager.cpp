#include "resource/CFiResourceManager.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "common/mofi_tracelog.h"
#include "fiid/CFiFiidNode.h"
#include "resource/CFiUdid.h"
#include "resource/CFiUdidException.h"

namespace {

constexpr const char* kDeviceIdentifierMark = "UDID##";

// The objid of a device Node, and the Node.
using Pair = std::pair<std::string_view, const CFiFiidNode*>;

// The identifier pairs of the tree under `root` in ascending order of objid, each objid once: of Nodes
// with the same one the last in document order. This is what CFiFiidNode::getNodes collects into a map,
// without the copies and the nodes of a map.
std::vector<Pair> identifierPairs(const CFiFiidNode& root) {
    std::vector<Pair> pairs;
    for (const CFiFiidNode* node : root.findNodes(kDeviceIdentifierMark)) {
        pairs.emplace_back(node->objid, node);
    }
    const auto isBefore = [](const Pair& left, const Pair& right) {
        return left.first < right.first;
    };
    const auto isSame = [](const Pair& left, const Pair& right) {
        return left.first == right.first;
    };
    std::reverse(pairs.begin(), pairs.end());
    std::stable_sort(pairs.begin(), pairs.end(), isBefore);
    pairs.erase(std::unique(pairs.begin(), pairs.end(), isSame), pairs.end());
    return pairs;
}

// Returns false when the target cannot be claimed.
bool applyMode(const STargetPlace& place, int mode) {
    if (mode == CFiResourceManager::kRelease) {
        // The list stays Used: its state says that it was claimed in this call, not that it is
        // full.
        place.resource->state = kResourceAvailable;
    } else if (mode == CFiResourceManager::kClaim) {
        if (place.resource->state == kResourceUsed) {
            return false;
        }
        place.resource->state = kResourceUsed;
        place.list->state = kResourceUsed;
    }
    return true;
}

bool applyMode(const std::vector<STargetPlace>& places, int mode) {
    bool result = true;
    for (const STargetPlace& place : places) {
        result = applyMode(place, mode) && result;
    }
    return result;
}

}  // namespace

bool CFiResourceManager::validateResources(CFiFiidNode* node, int mode) {
    const auto known = matched.find(node);
    if (known != matched.end()) {
        return applyMode(known->second, mode);
    }
    if (!index.has_value()) {
        index.emplace(resourceSet);
    }

    bool result = true;
    bool isMatched = true;
    std::vector<STargetPlace> places;
    CFiUdid key;
    CFiUdid value;
    try {
        for (const auto& [objid, device] : identifierPairs(*node)) {
            key.parse(device->objid);
            value.parse(device->altobjid);
            const STargetPlace place = index->find(key, value);
            if (place.resource != nullptr) {
                places.push_back(place);
                result = applyMode(place, mode) && result;
                continue;
            }
            isMatched = false;
            result = false;
            if (mode == kCheck) {
                return false;
            }
        }
    } catch (const CFiUdidException& malformed) {
        mofi_tracelog(kTraceFailure, "ERROR: %s", malformed.identifier.c_str());
        throw CFiUdidException{malformed.identifier, malformed.code};
    }
    if (isMatched) {
        matched.emplace(node, std::move(places));
    }
    return result;
}

void CFiResourceManager::print() const {
    mofi_tracelog(kTraceProgress, "CFiResourceManager::print : printing resource set");
    for (const SFiResourceList& list : resourceSet) {
        mofi_tracelog(kTraceProgress, "[%s:%s](%s)", list.enclosure.c_str(), list.device.c_str(),
                      resourceStateName(list.state));
        for (const SFiResource& resource : list.resources) {
            mofi_tracelog(kTraceProgress, "{%s,%s}", resource.device.c_str(),
                          resourceStateName(resource.state));
        }
    }
}
