#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One "Node" element of a backup's document, with its data elements as fields. The root of a
// document stands for the backup itself.
//
// Nodes are plain records on the heap, linked by raw pointers: destroying a node destroys neither
// its children nor its parent.
class CFiFiidNode {
public:
    std::string objid;
    // The name under which the document was loaded; root only.
    std::string fiidFile;
    std::string altobjid;
    std::string splitType;
    // The key of the date orderings, compared as bytes; root only.
    std::string timeStamp;
    std::int32_t type = 0;
    // What became of the backup, set by the rotation; root only.
    std::int32_t state = 0;
    // In document order.
    std::vector<CFiFiidNode*> children;
    // Null for a root.
    CFiFiidNode* parent = nullptr;
};
