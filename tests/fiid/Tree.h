#pragma once

#include <memory>
#include <string>
#include <vector>

#include "driver/CFiTreeDeleter.h"
#include "fiid/CFiFiidNode.h"

namespace fi_test {

// "(objid|altobjid|splitType|type children)", children in order, each preceded by a space; "none" for
// null.
std::string dump(const CFiFiidNode* node);

// Owns the trees of the roots in `roots`.
struct STrees {
    std::vector<CFiFiidNode*> roots;
    CFiTreeDeleter deleter{roots};
};

// A document parsed by a parser and a handler of its own.
struct SParsedDocument {
    STrees trees;
    CFiFiidNode* root = nullptr;
    bool errorSeen = false;
};
std::unique_ptr<SParsedDocument> parseDocument(const std::string& document);

}  // namespace fi_test
