#include "driver/rotation.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/mofi_tracelog.h"
#include "driver/CFiHandOver.h"
#include "driver/CFiTreeDeleter.h"
#include "driver/fi_process_backups.h"
#include "driver/selection.h"
#include "fiid/CFiFiidLoader.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiXmlLibrary.h"
#include "fiid/SAscendingDateSort.h"
#include "fiid/SDescendingDateSort.h"
#include "resource/CFiResourceManager.h"
#include "resource/CFiTargetIndex.h"

namespace {

using Backups = std::vector<CFiFiidNode*>;
// The targets of each backup that passed the check. They stay valid to the end of the call: until then no
// tree changes, and nothing of the configurations but their states.
using TargetsOfBackups = std::unordered_map<const CFiFiidNode*, BackupTargets>;
// By file name: 0, or FI_EXCLUDE_ROTATION for a backup that must keep its targets.
using ExcludeMap = std::map<std::string, std::int32_t>;

// A name listed twice has the flag word of its last entry.
ExcludeMap recordExcludeFlags(const std::vector<std::string>& fiidNames, const std::int32_t* fiidFlags) {
    ExcludeMap excludeMap;
    for (std::size_t i = 0; i < fiidNames.size(); ++i) {
        excludeMap[fiidNames[i]] = fiidFlags[i] & FI_EXCLUDE_ROTATION;
        // At the level of failures although it reports none: hosts that keep only this level still
        // see what they asked for.
        mofi_tracelog(kTraceFailure, "fi_process_backups :  Fiid [%s] exclude rotation flag [%d] ",
                      fiidNames[i].c_str(), fiidFlags[i]);
    }
    return excludeMap;
}

void printLoaded(const Backups& backups) {
    for (CFiFiidNode* backup : backups) {
        mofi_tracelog(kTraceProgress, "fi_process_backups : parsed [%s]", backup->fiidFile.c_str());
        backup->print(0);
    }
}

TargetsOfBackups checkBackups(std::vector<SFiResourceList>& resourceSet, const Backups& backups) {
    const CFiTargetIndex index(resourceSet);
    TargetsOfBackups targetsOf;
    for (CFiFiidNode* backup : backups) {
        std::optional<BackupTargets> targets = findTargets(*backup, index);
        if (targets.has_value()) {
            targetsOf.emplace(backup, *std::move(targets));
            mofi_tracelog(kTraceProgress, "fi_process_backups : [RESOURCES MATCH] [%s]",
                          backup->fiidFile.c_str());
            // Until its claim fails, or it is released.
            backup->state = FI_BACKUP_KEPT;
        } else {
            mofi_tracelog(kTraceProgress, "fi_process_backups : [INVALID RESOURCES] [%s]",
                          backup->fiidFile.c_str());
            backup->state = FI_BACKUP_INVALID;
        }
    }
    return targetsOf;
}

// `backups` newest first: of two that hold the same target the newer one keeps it. Those that failed the
// check are passed over. A backup whose claim fails becomes invalid, but its other targets stay Used.
void claimTargets(const TargetsOfBackups& targetsOf, const Backups& backups) {
    for (CFiFiidNode* backup : backups) {
        if (backup->state != FI_BACKUP_KEPT) {
            continue;
        }
        if (claim(targetsOf.at(backup))) {
            mofi_tracelog(kTraceProgress, "fi_process_backups : [RESERVE GOOD] %s - T: %s",
                          backup->fiidFile.c_str(), backup->timeStamp.c_str());
        } else {
            mofi_tracelog(kTraceProgress, "fi_process_backups : %s - T: %s", backup->fiidFile.c_str(),
                          backup->timeStamp.c_str());
            backup->state = FI_BACKUP_INVALID;
        }
    }
}

// The configurations without a free target. A release only adds free targets, so a configuration that has one
// is not looked at again; trying to build the selection after each release would take much longer.
class CFiShortConfigurations {
public:
    explicit CFiShortConfigurations(const std::vector<SFiResourceList>& resourceSet)
        : next(resourceSet.begin()), end(resourceSet.end()) {}

    // Goes on to the next configuration without a free target; false when there is none.
    bool advance() {
        next = std::find_if(next, end, [](const SFiResourceList& list) {
            return std::none_of(list.resources.begin(), list.resources.end(), isAvailable);
        });
        return next != end;
    }

private:
    std::vector<SFiResourceList>::const_iterator next;
    std::vector<SFiResourceList>::const_iterator end;
};

// `backups` oldest first. The test before each release makes sure that no more are released than needed.
void releaseOldest(const std::vector<SFiResourceList>& resourceSet, const TargetsOfBackups& targetsOf,
                   const Backups& backups, ExcludeMap& excludeMap) {
    CFiShortConfigurations shortConfigurations(resourceSet);
    for (CFiFiidNode* backup : backups) {
        if (!shortConfigurations.advance()) {
            return;
        }
        if (backup->state != FI_BACKUP_KEPT) {
            continue;
        }
        if (excludeMap[backup->fiidFile] == 0) {
            release(targetsOf.at(backup));
            backup->state = FI_BACKUP_ROTATED;
        } else {
            mofi_tracelog(kTraceProgress, "fi_process_backups : Skipped Rotation for fiid [%s]",
                          backup->fiidFile.c_str());
        }
    }
}

// What fiidFlags will hold. `backups` oldest first: for a name that was loaded, the state of the first of
// them with that name; for any other name, its flag word. A name listed twice stands for two backups with one
// time stamp, so which of them comes first is not specified.
std::vector<std::int32_t> finalFlags(const std::vector<std::string>& fiidNames, const std::int32_t* fiidFlags,
                                     const Backups& backups) {
    std::unordered_map<std::string_view, std::int32_t> states;
    for (const CFiFiidNode* backup : backups) {
        states.emplace(backup->fiidFile, backup->state);
    }
    std::vector<std::int32_t> flags;
    flags.reserve(fiidNames.size());
    for (std::size_t i = 0; i < fiidNames.size(); ++i) {
        const auto found = states.find(fiidNames[i]);
        flags.push_back(found != states.end() ? found->second : fiidFlags[i]);
    }
    return flags;
}

void printOutcome(const Backups& backups) {
    for (CFiFiidNode* backup : backups) {
        mofi_tracelog(kTraceProgress, "fi_process_backups : parsed [%s] state=[%d]", backup->fiidFile.c_str(),
                      backup->state);
        backup->print(0);
    }
}

}  // namespace

std::int32_t selectByRotation(CFiResourceManager& manager, const char* const* fiidList,
                              std::int32_t* fiidFlags, std::int32_t fiidListSize, char** resultString) {
    const std::vector<std::string> fiidNames(fiidList, fiidList + std::max(fiidListSize, 0));
    ExcludeMap excludeMap = recordExcludeFlags(fiidNames, fiidFlags);

    CFiFiidLoader loader;
    const CFiTreeDeleter deleter(loader.nodes);
    const CFiTreeDeleter deleterOfReplaced(loader.replaced);
    // The status is ignored: the call goes on with the documents that could be loaded.
    {
        const CFiXmlLibrary heldForAllDocuments;
        loader.import(fiidNames);
    }
    Backups backups = loader.nodes;

    printLoaded(backups);
    manager.print();
    const TargetsOfBackups targetsOf = checkBackups(manager.resourceSet, backups);
    std::sort(backups.begin(), backups.end(), SDescendingDateSort());
    claimTargets(targetsOf, backups);
    std::sort(backups.begin(), backups.end(), SAscendingDateSort());
    releaseOldest(manager.resourceSet, targetsOf, backups, excludeMap);

    const std::optional<std::string> selection = buildSelection(manager.resourceSet);
    if (!selection.has_value()) {
        mofi_tracelog(kTraceFailure,
                      "fi_process_backups : Resources not availabe, some/all are part of Skip "
                      "rotation fiids");
        return FI_STATUS_FAILURE;
    }
    CMallocedText result = duplicateForCaller(*selection);
    if (result == nullptr) {
        return FI_STATUS_FAILURE;
    }
    CFiHandOver handOver(resultString, fiidFlags, fiidNames.size());
    handOver.writeSelection(std::move(result));
    mofi_tracelog(kTraceProgress, "fi_process_backups : resource_config_string [%s] ", selection->c_str());
    handOver.writeFlagWords(finalFlags(fiidNames, fiidFlags, backups));

    manager.print();
    printOutcome(backups);
    handOver.commit();
    return FI_STATUS_SUCCESS;
}
