#include "resource/CFiResourceManager.h"

#include <cstdint>
#include <map>
#include <string>

#include "common/mofi_tracelog.h"
#include "fiid/CFiFiidNode.h"
#include "resource/CFiUdid.h"
#include "resource/CFiUdidException.h"

namespace {

constexpr const char* kDeviceIdentifierMark = "UDID##";

// Where a pair was found; both members are null when it was not.
struct SMatch {
    SFiResourceList* list = nullptr;
    SFiResource* resource = nullptr;
};

template <typename Record>
bool isNamedBy(const Record& record, const CFiUdid& identifier) {
    return record.device == identifier.device && record.enclosure == identifier.enclosure;
}

// The first further target named by `value` in a configuration whose first target is named by
// `key`. Several configurations may share a first target, so one without the further target ends
// nothing.
SMatch findResource(std::vector<SFiResourceList>& resourceSet, const CFiUdid& key,
                    const CFiUdid& value) {
    for (SFiResourceList& list : resourceSet) {
        if (!isNamedBy(list, key)) {
            continue;
        }
        for (SFiResource& resource : list.resources) {
            if (isNamedBy(resource, value)) {
                return {&list, &resource};
            }
        }
    }
    return {};
}

// Returns false when the target cannot be claimed.
bool applyMode(const SMatch& match, int mode) {
    if (mode == CFiResourceManager::kRelease) {
        // The list stays Used: its state says that it was claimed in this call, not that it is
        // full.
        match.resource->state = kResourceAvailable;
    } else if (mode == CFiResourceManager::kClaim) {
        if (match.resource->state == kResourceUsed) {
            return false;
        }
        match.resource->state = kResourceUsed;
        match.list->state = kResourceUsed;
    }
    return true;
}

}  // namespace

bool CFiResourceManager::validateResources(CFiFiidNode* node, int mode) {
    std::map<std::string, std::string> pairs;
    node->getNodes(kDeviceIdentifierMark, pairs);

    bool result = true;
    CFiUdid key;
    CFiUdid value;
    try {
        for (const auto& [objid, altobjid] : pairs) {
            key.parse(objid);
            value.parse(altobjid);
            const SMatch match = findResource(resourceSet, key, value);
            if (match.resource != nullptr) {
                result = applyMode(match, mode) && result;
                continue;
            }
            result = false;
            if (mode == kCheck) {
                return false;
            }
        }
    } catch (const CFiUdidException& malformed) {
        mofi_tracelog(kTraceFailure, "ERROR: %s", malformed.identifier.c_str());
        throw CFiUdidException{malformed.identifier, malformed.code};
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
