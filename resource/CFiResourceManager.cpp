#include "resource/CFiResourceManager.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/mofi_tracelog.h"
#include "fiid/CFiFiidNode.h"
#include "resource/CFiUdid.h"
#include "resource/CFiUdidException.h"

namespace {

constexpr const char* kDeviceIdentifierMark = "UDID##";

// The targets of all identifier pairs of the tree under `root`, in no particular order; nothing when a
// pair is malformed or matches no target. Of Nodes with the same objid the last one counts, as it does
// in the map that CFiFiidNode::getNodes fills.
std::optional<BackupTargets> matchAll(const CFiFiidNode& root, const CFiTargetIndex& index) {
    const std::vector<const CFiFiidNode*> nodes = root.findNodes(kDeviceIdentifierMark);
    std::unordered_map<std::string_view, const CFiFiidNode*> lastNodes;
    lastNodes.reserve(nodes.size());
    for (const CFiFiidNode* node : nodes) {
        lastNodes[node->objid] = node;
    }

    BackupTargets targets;
    targets.reserve(lastNodes.size());
    CFiUdid key;
    CFiUdid value;
    try {
        for (const auto& [objid, node] : lastNodes) {
            key.parse(node->objid);
            value.parse(node->altobjid);
            const STargetInList target = index.find(key, value);
            if (target.resource == nullptr) {
                return std::nullopt;
            }
            targets.push_back(target);
        }
    } catch (const CFiUdidException&) {
        return std::nullopt;
    }
    return targets;
}

// Here it is decided whether a claim succeeds: returns false, and changes nothing, when the target is Used
// already.
bool claimTarget(const STargetInList& target) {
    if (target.resource->state == kResourceUsed) {
        return false;
    }
    target.resource->state = kResourceUsed;
    target.list->state = kResourceUsed;
    return true;
}

// The list stays Used: its state says that it was claimed in this call, not that it is full.
void releaseTarget(const STargetInList& target) {
    target.resource->state = kResourceAvailable;
}

// Goes through the pairs in ascending order of objid. The order matters when a pair is malformed or matches
// no target: it decides what is thrown, traced and changed.
bool validateInOrder(const CFiFiidNode& node, const CFiTargetIndex& index, int mode) {
    std::map<std::string, std::string> pairs;
    node.getNodes(kDeviceIdentifierMark, pairs);

    bool result = true;
    CFiUdid key;
    CFiUdid value;
    try {
        for (const auto& [objid, altobjid] : pairs) {
            key.parse(objid);
            value.parse(altobjid);
            const STargetInList target = index.find(key, value);
            if (target.resource == nullptr) {
                result = false;
                if (mode == CFiResourceManager::kCheck) {
                    return false;
                }
            } else if (mode == CFiResourceManager::kClaim) {
                result = claimTarget(target) && result;
            } else if (mode == CFiResourceManager::kRelease) {
                releaseTarget(target);
            }
        }
    } catch (const CFiUdidException& malformed) {
        mofi_tracelog(kTraceFailure, "ERROR: %s", malformed.identifier.c_str());
        throw CFiUdidException{malformed.identifier, malformed.code};
    }
    return result;
}

}  // namespace

bool CFiResourceManager::validateResources(CFiFiidNode* node, int mode) {
    return validateInOrder(*node, CFiTargetIndex(resourceSet), mode);
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

std::optional<BackupTargets> findTargets(const CFiFiidNode& root, const CFiTargetIndex& index) {
    std::optional<BackupTargets> targets = matchAll(root, index);
    if (!targets.has_value()) {
        // Traces and throws what is malformed, unless a pair that matches no target comes first.
        validateInOrder(root, index, CFiResourceManager::kCheck);
    }
    return targets;
}

// All pairs of the backup matched, so the outcome of a claim does not depend on their order.
bool claim(const BackupTargets& targets) {
    bool result = true;
    for (const STargetInList& target : targets) {
        result = claimTarget(target) && result;
    }
    return result;
}

void release(const BackupTargets& targets) {
    for (const STargetInList& target : targets) {
        releaseTarget(target);
    }
}
