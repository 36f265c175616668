#pragma once

#include <string>
#include <utility>
#include <vector>

namespace fi_test {

struct SNode {
    // Elements in document order, by name and text.
    std::vector<std::pair<std::string, std::string>> elements;
    std::vector<SNode> children;
};

// The text of a document with `root` as its outermost element.
std::string toXml(const SNode& root);

// The text of the last element `name` of `node`; empty without one.
std::string valueOf(const SNode& node, const std::string& name);

// A backup taken at `timeStamp` that holds the further targets of some configurations, each pair a first
// target and a further target as ENCLOSURE##DEVICE.
SNode backup(const std::string& timeStamp, const std::vector<std::pair<std::string, std::string>>& pairs);

// The identifier of a target.
std::string udid(const std::string& target);

}  // namespace fi_test
