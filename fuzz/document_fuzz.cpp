// The input is a document. For every input: the loader reads what is in the file, each line up to its first
// NUL byte; the result is a tree in which every child has the right parent; its pairs are those of its nodes.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "driver/CFiTreeDeleter.h"
#include "fiid/CFiFiidLoader.h"
#include "fiid/CFiFiidNode.h"
#include "fiid/CFiFiidParser.h"
#include "fiid/CFiXmlLibrary.h"
#include "fuzz/Document.h"
#include "fuzz/RootCollector.h"
#include "fuzz/require.h"

namespace {

// Larger trees are not printed, and their pairs are not compared with every node, since both take quadratic
// time.
constexpr std::size_t kNodesWorthPrinting = 200;

std::vector<const CFiFiidNode*> nodesOf(const CFiFiidNode* root) {
    std::vector<const CFiFiidNode*> nodes{root};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const CFiFiidNode* child : nodes[i]->children) {
            require(child->parent == nodes[i], "a child's parent is the node that holds it");
            require(child->timeStamp.empty() && child->fiidFile.empty(),
                    "only a root has a time stamp and a file name");
            nodes.push_back(child);
        }
    }
    return nodes;
}

void requirePairs(const CFiFiidNode& root, const std::vector<const CFiFiidNode*>& nodes) {
    std::map<std::string, std::string> pairs;
    root.getNodes("UDID##", pairs);
    for (const CFiFiidNode* node : nodes) {
        const bool isDevice = node->objid.find("UDID##") != std::string::npos;
        require((pairs.count(node->objid) == 1) == isDevice, "a pair is a device node's");
    }
    for (const auto& [objid, altobjid] : pairs) {
        bool isKnown = false;
        for (const CFiFiidNode* node : nodes) {
            isKnown = isKnown || (node->objid == objid && node->altobjid == altobjid);
        }
        require(isKnown, "a pair is that of one node");
    }
}

std::string asRead(const std::string& content) {
    std::string text;
    for (std::size_t start = 0; start < content.size();) {
        // A line also ends where the loader's buffer ends.
        const std::size_t lineEnd = content.find('\n', start);
        const std::size_t length =
            lineEnd == std::string::npos ? content.size() - start : lineEnd + 1 - start;
        const std::string piece = content.substr(start, length < 2047 ? length : 2047);
        text += piece.c_str();
        start += piece.size();
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Initialising the XML library for every input would take most of the time.
    static const CFiXmlLibrary held;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const CDocument document(bytes);
    std::string content;
    const CFiFiidLoader loader;
    require(loader.load(document.name(), content) == CFiFiidLoader::kLoaded, "the file opens");
    require(content == asRead(bytes), "the file is read by lines");

    CFiFiidParser parser(nullptr);
    CRootCollector handler;
    const CFiTreeDeleter deleter(handler.roots);
    parser.setHandler(&handler);
    parser.parse(content);

    require((handler.root == nullptr) == handler.roots.empty(), "a root is the result");
    require(handler.depth >= 0, "no more Nodes close than open");
    require(handler.errorSeen || handler.depth == 0, "a whole document closes what it opens");
    if (handler.root != nullptr) {
        require(handler.root == handler.roots.back(), "the last root is the result");
        require(handler.root->parent == nullptr, "a root has no parent");
        const std::vector<const CFiFiidNode*> nodes = nodesOf(handler.root);
        if (nodes.size() < kNodesWorthPrinting) {
            requirePairs(*handler.root, nodes);
            handler.root->print(0);
        }
    }
    return 0;
}
