#pragma once

#include <vector>

#include "fiid/CFiFiidHandler.h"
#include "fiid/CFiFiidNode.h"

// Remembers every root, because the loader's handler forgets those that a later one replaces.
class CRootCollector : public CFiFiidHandler {
public:
    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc::Attributes& attributes) override {
        const CFiFiidNode* const before = root;
        CFiFiidHandler::startElement(uri, localname, qname, attributes);
        if (root != before) {
            roots.push_back(root);
        }
    }

    std::vector<CFiFiidNode*> roots;
};
