#pragma once

#include <vector>

class CFiFiidNode;

// Deletes whole trees at the end of a scope: all those whose roots the list holds by then. Nodes
// have no owner of their own; the call that had them loaded is the one that knows when the last
// pointer into them is done with.
class CFiTreeReleaser {
public:
    // `rootList` is borrowed and must outlive the releaser.
    explicit CFiTreeReleaser(const std::vector<CFiFiidNode*>& rootList) : roots(rootList) {}
    ~CFiTreeReleaser();

    CFiTreeReleaser(const CFiTreeReleaser&) = delete;
    CFiTreeReleaser& operator=(const CFiTreeReleaser&) = delete;

private:
    const std::vector<CFiFiidNode*>& roots;
};
