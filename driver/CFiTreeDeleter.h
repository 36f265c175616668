#pragma once

#include <vector>

class CFiFiidNode;

// Deletes whole trees at the end of a scope: all those whose roots the list holds by then, and all that
// can be reached from these roots by `parent`, which links replaced roots in the host library. Nodes do
// not delete one another; only the call that had them loaded knows when no pointer into them is used
// any more.
class CFiTreeDeleter {
public:
    // `rootList` is borrowed and must outlive the deleter.
    explicit CFiTreeDeleter(const std::vector<CFiFiidNode*>& rootList) : roots(rootList) {}
    ~CFiTreeDeleter();

    CFiTreeDeleter(const CFiTreeDeleter&) = delete;
    CFiTreeDeleter& operator=(const CFiTreeDeleter&) = delete;

private:
    const std::vector<CFiFiidNode*>& roots;
};
