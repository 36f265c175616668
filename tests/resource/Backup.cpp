#include "tests/resource/Backup.h"

#include <gtest/gtest.h>

#include "resource/CFiResourceParser.h"

namespace fi_test {

CBackup::CBackup(std::initializer_list<std::pair<std::string, std::string>> pairs) {
    for (const auto& [objid, altobjid] : pairs) {
        add(objid, altobjid);
    }
}

void CBackup::add(const std::string& objid, const std::string& altobjid) {
    auto node = std::make_unique<CFiFiidNode>();
    node->objid = objid;
    node->altobjid = altobjid;
    node->parent = root.get();
    root->children.push_back(node.get());
    nodes.push_back(std::move(node));
}

std::string udid(const std::string& target) {
    return "UDID##v##m##" + target;
}

CFiResourceManager managerOf(const char* configuration) {
    CFiResourceParser parser;
    EXPECT_EQ(parser.parse(configuration), 0);
    CFiResourceManager manager;
    manager.resourceSet = parser.configurations;
    return manager;
}

std::string states(const CFiResourceManager& manager) {
    std::string text;
    for (const SFiResourceList& list : manager.resourceSet) {
        text += (text.empty() ? "" : " ") + std::to_string(list.state) + ':';
        for (const SFiResource& resource : list.resources) {
            text += (text.back() == ':' ? "" : ",") + std::to_string(resource.state);
        }
    }
    return text;
}

}  // namespace fi_test
