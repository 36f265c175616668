#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fiid/CFiFiidNode.h"
#include "resource/CFiResourceManager.h"

namespace fi_test {

// A root without identifiers and one child for each pair of objid and altobjid.
class CBackup {
public:
    CBackup(std::initializer_list<std::pair<std::string, std::string>> pairs = {});
    void add(const std::string& objid, const std::string& altobjid);
    [[nodiscard]] CFiFiidNode* get() const { return root.get(); }

private:
    std::unique_ptr<CFiFiidNode> root = std::make_unique<CFiFiidNode>();
    std::vector<std::unique_ptr<CFiFiidNode>> nodes;
};

// A device identifier of a target written as in a configuration.
std::string udid(const std::string& target);

CFiResourceManager managerOf(const char* configuration);

// The states of lists and their targets: "1:0,1 0:0" stands for a Used list with an Available and a Used
// target, and an Available list with an Available target.
std::string states(const CFiResourceManager& manager);

}  // namespace fi_test
