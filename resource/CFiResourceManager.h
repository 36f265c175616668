#pragma once

#include <optional>
#include <vector>

#include "resource/CFiTargetIndex.h"
#include "resource/SFiResourceList.h"

class CFiFiidNode;

// Holds the targets of one call and says of each earlier backup whether its devices agree with
// them.
class CFiResourceManager {
public:
    enum EMode : int {
        // Changes nothing; ends at the first pair that matches no target.
        kCheck = 0,
        // Marks the targets of the backup Used, with their configurations; a target that is already
        // Used makes the result false and is left as it is.
        kClaim = 1,
        // Marks the targets of the backup Available; their configurations keep their state.
        kRelease = 2,
    };

    // The rotation does not call this: it uses findTargets, claim and release below, which do the same in
    // less time. It stays because the library's contract fixes it.
    //
    // Matches every identifier pair of the tree under `node` (objid, altobjid of each Node whose
    // objid holds a device identifier), in ascending order of objid, against `resourceSet`: the
    // objid must name a configuration's first target, the altobjid one of its further targets. True
    // when every pair was matched and no claim met a target already Used.
    //
    // `node` is borrowed and not changed. `mode` is an EMode; any other value changes nothing and
    // goes on after a pair without a match. Throws CFiUdidException for a malformed identifier,
    // after tracing it; states changed for earlier pairs stay changed.
    bool validateResources(CFiFiidNode* node, int mode);

    // Writes the whole set to the trace.
    void print() const;

    // In configuration order. validateResources changes states only, never the records' order.
    std::vector<SFiResourceList> resourceSet;
};

// The targets of one backup, where they stand in a resource set; the set's records must stay where they are.
using BackupTargets = std::vector<STargetInList>;

// The three functions below do what validateResources does in its three modes, in less time: the check finds
// the targets of a backup, through an index that serves all backups, and the claim and the release take them
// from there. In between, the caller must change no tree, and nothing of the records but their states.
//
// The check: the targets of all identifier pairs under `root`, in no particular order; nothing when a pair
// matches no target. Traces and throws as validateResources does.
std::optional<BackupTargets> findTargets(const CFiFiidNode& root, const CFiTargetIndex& index);

// The claim: marks all targets that are not Used yet, and their configurations, Used. Returns whether none
// was Used before; if one was, the others are marked nevertheless.
bool claim(const BackupTargets& targets);

// The release: marks the targets Available; their configurations keep their state.
void release(const BackupTargets& targets);
