#include "fiid/CFiFiidNode.h"

#include <algorithm>
#include <cstddef>

#include "common/mofi_tracelog.h"

namespace {

// Calls visit(node, depth) for `root` (depth 0) and all its descendants, in pre-order.
template <typename Visit>
void walkPreOrder(const CFiFiidNode& root, Visit visit) {
    struct SFrame {
        const CFiFiidNode* node;
        std::size_t nextChild;
    };

    visit(root, std::size_t{0});
    std::vector<SFrame> path{{&root, 0}};
    while (!path.empty()) {
        SFrame& innermost = path.back();
        if (innermost.nextChild == innermost.node->children.size()) {
            path.pop_back();
            continue;
        }
        const CFiFiidNode* child = innermost.node->children[innermost.nextChild++];
        visit(*child, path.size());
        path.push_back({child, 0});
    }
}

}  // namespace

std::int32_t CFiFiidNode::getNodes(std::string pattern,
                                   std::map<std::string, std::string>& result) const {
    walkPreOrder(*this, [&](const CFiFiidNode& node, std::size_t) {
        if (node.objid.find(pattern) != std::string::npos) {
            result[node.objid] = node.altobjid;
        }
    });
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
        mofi_tracelog(kTraceProgress, "%s <%d %s>", indentation.c_str(), node.type,
                      node.splitType.c_str());
    });
}
