#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "resource/CFiTargetIndex.h"
#include "resource/SFiResourceList.h"

class CFiFiidNode;

// Holds the targets of one call and says of each earlier backup whether its devices agree with
// them.
//
// From the first validateResources on, the records of `resourceSet` and the trees given to it must
// stay as they are, but for the records' states: what was found once is not looked for again.
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

private:
    // For a backup with a pair that is malformed or matches nothing: which pair is met first decides
    // what comes of it.
    bool validateInOrder(const CFiFiidNode& node, int mode);

    // Made by the first validateResources.
    std::optional<CFiTargetIndex> index;
    // The targets of each backup that matched whole. It would match the same again, since matching
    // depends on names only.
    std::unordered_map<const CFiFiidNode*, std::vector<STargetPlace>> matched;
};
