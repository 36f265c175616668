#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// One "Node" element of a backup's document, with its data elements as fields. The root of a
// document stands for the backup itself.
//
// Nodes are plain records on the heap, linked by raw pointers: destroying a node destroys neither
// its children nor its parent. A document may nest as deep as its writer likes, so every walk over
// a tree is a loop; recursion would let the document overrun the caller's stack.
class CFiFiidNode {
public:
    // Sets an entry of `result`, objid to altobjid, for every node of this tree whose objid
    // contains `pattern`, in pre-order, so that of nodes with the same objid the last one's
    // altobjid stays. Other entries of `result` are left as they are. Always returns 0.
    std::int32_t getNodes(std::string pattern, std::map<std::string, std::string>& result) const;

    // The nodes that getNodes takes its entries from, in pre-order.
    [[nodiscard]] std::vector<const CFiFiidNode*> findNodes(const std::string& pattern) const;

    // Writes this tree to the trace in pre-order, three lines for each node, indented by one tab
    // for each level above 0; this node is printed at `level`, every child one level below its
    // parent.
    void print(std::int32_t level);

    std::string objid;
    // The name under which the document was loaded; root only.
    std::string fiidFile;
    std::string altobjid;
    std::string splitType;
    // The key of the date orderings, compared as bytes; root only.
    std::string timeStamp;
    std::int32_t type = 0;
    // The state of the backup, FI_BACKUP_..., which the rotation sets; root only.
    std::int32_t state = 0;
    // In document order.
    std::vector<CFiFiidNode*> children;
    // Null for a root in CFiFiidLoader::nodes. In the host library, that of a root which a later one of its
    // document replaced is the next such root (CFiFiidHandler::replaced).
    CFiFiidNode* parent = nullptr;
};
