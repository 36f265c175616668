#include "fiid/CFiFiidNode.h"

#include <algorithm>
#include <cstddef>

#include "common/mofi_tracelog.h"

namespace {

// Calls visit(node, depth) for `root` (depth 0) and all its descendants, in pre-order. A node waits in
// `waiting` only while it has children still to be visited, so a tree without branches takes no space there,
// however deep.
template <typename Visit>
void walkPreOrder(const CFiFiidNode& root, Visit visit) {
    struct SFrame {
        const CFiFiidNode* node;
        std::size_t nextChild;
        std::size_t childDepth;
    };

    std::vector<SFrame> waiting;
    const auto enter = [&](const CFiFiidNode& node, std::size_t depth) {
        visit(node, depth);
        if (!node.children.empty()) {
            waiting.push_back({&node, 0, depth + 1});
        }
    };

    enter(root, 0);
    while (!waiting.empty()) {
        SFrame& innermost = waiting.back();
        const CFiFiidNode& child = *innermost.node->children[innermost.nextChild++];
        const std::size_t depth = innermost.childDepth;
        if (innermost.nextChild == innermost.node->children.size()) {
            waiting.pop_back();
        }
        enter(child, depth);
    }
}

}  // namespace

std::vector<const CFiFiidNode*> CFiFiidNode::findNodes(const std::string& pattern) const {
    std::vector<const CFiFiidNode*> found;
    walkPreOrder(*this, [&](const CFiFiidNode& node, std::size_t) {
        if (node.objid.find(pattern) != std::string::npos) {
            found.push_back(&node);
        }
    });
    return found;
}

// `pattern` is a copy because the signature of this operation is fixed.
std::int32_t CFiFiidNode::getNodes(std::string pattern, std::map<std::string, std::string>& result) const {
    for (const CFiFiidNode* node : findNodes(pattern)) {
        result[node->objid] = node->altobjid;
    }
    return 0;
}

void CFiFiidNode::print(std::int32_t level) {
    // One string serves the whole walk: a fresh one for each node would make the walk quadratic in
    // the depth of the tree.
    std::string indentation;
    walkPreOrder(*this, [&](const CFiFiidNode& node, std::size_t depth) {
        const std::int64_t tabs = level + static_cast<std::int64_t>(depth);
        indentation.resize(static_cast<std::size_t>(std::max<std::int64_t>(tabs, 0)), '\t');
        mofi_tracelog(kTraceProgress, "%s [%s]", indentation.c_str(), node.objid.c_str());
        mofi_tracelog(kTraceProgress, "%s {%s}", indentation.c_str(), node.altobjid.c_str());
        mofi_tracelog(kTraceProgress, "%s <%d %s>", indentation.c_str(), node.type, node.splitType.c_str());
    });
}
