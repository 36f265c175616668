#include "driver/CFiTreeDeleter.h"

#include "fiid/CFiFiidNode.h"

namespace {

// Descends along last children and climbs by the parent links, so that neither the stack nor the
// heap is needed, however deep the tree: releasing must work when memory has run out. It does not stop at
// `root`: the `parent` of a replaced root is the next tree to delete.
void deleteTree(CFiFiidNode* root) {
    CFiFiidNode* node = root;
    while (node != nullptr) {
        if (!node->children.empty()) {
            CFiFiidNode* child = node->children.back();
            node->children.pop_back();
            node = child;
            continue;
        }
        CFiFiidNode* parent = node->parent;
        delete node;
        node = parent;
    }
}

}  // namespace

CFiTreeDeleter::~CFiTreeDeleter() {
    for (CFiFiidNode* root : roots) {
        deleteTree(root);
    }
}
