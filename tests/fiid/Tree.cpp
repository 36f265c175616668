#include "tests/fiid/Tree.h"

#include "fiid/CFiFiidHandler.h"
#include "fiid/CFiFiidParser.h"

namespace fi_test {

std::string dump(const CFiFiidNode* node) {
    if (node == nullptr) {
        return "none";
    }
    std::string text =
        '(' + node->objid + '|' + node->altobjid + '|' + node->splitType + '|' + std::to_string(node->type);
    for (const CFiFiidNode* child : node->children) {
        text += ' ' + dump(child);
    }
    return text + ')';
}

std::unique_ptr<SParsedDocument> parseDocument(const std::string& document) {
    auto parsed = std::make_unique<SParsedDocument>();
    CFiFiidParser parser(nullptr);
    CFiFiidHandler handler;
    parser.setHandler(&handler);
    parser.parse(document);
    parsed->root = handler.root;
    parsed->errorSeen = handler.errorSeen;
    if (handler.root != nullptr) {
        parsed->trees.roots.push_back(handler.root);
    }
    return parsed;
}

}  // namespace fi_test
