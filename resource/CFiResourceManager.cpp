#include "resource/CFiResourceManager.h"

#include "common/mofi_tracelog.h"

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
