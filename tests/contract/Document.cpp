#include "tests/contract/Document.h"

namespace fi_test {

std::string toXml(const SNode& root) {
    std::string xml = "<Node>";
    for (const auto& [name, text] : root.elements) {
        xml += '<' + name + '>' + text + "</" + name + '>';
    }
    for (const SNode& child : root.children) {
        xml += toXml(child);
    }
    return xml + "</Node>";
}

std::string valueOf(const SNode& node, const std::string& name) {
    std::string value;
    for (const auto& element : node.elements) {
        if (element.first == name) {
            value = element.second;
        }
    }
    return value;
}

std::string udid(const std::string& target) {
    return "UDID##v##m##" + target;
}

SNode backup(const std::string& timeStamp, const std::vector<std::pair<std::string, std::string>>& pairs) {
    SNode root{{{"timeStamp", timeStamp}}, {}};
    for (const auto& [first, further] : pairs) {
        root.children.push_back(
            SNode{{{"objid", udid(first)}, {"altobjid", udid(further)}, {"type", "2"}}, {}});
    }
    return root;
}

}  // namespace fi_test
