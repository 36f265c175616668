#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/model/Call.h"
#include "tests/model/Journal.h"

namespace fi_model {

struct SNode {
    std::string objid;
    std::string altobjid;
    std::string splitType;
    std::int32_t type = 0;
    std::vector<SNode> children;
};

// An earlier backup whose document was loaded and held a Node.
struct SBackup {
    std::string name;
    // Its place among the loaded backups.
    std::size_t loadIndex = 0;
    std::string timeStamp;
    SNode root;
    std::int32_t state = 0;
};

// The text of a "type" element as a number.
std::int32_t convertType(const std::string& text, SJournal& journal);

// The backups in list order, up to the first name that cannot be opened.
std::vector<SBackup> loadBackups(const std::vector<std::string>& names,
                                 const std::map<std::string, SDocument>& files, SJournal& journal);

// Three lines for each Node, a Node before its children.
void printTree(const SNode& node, int level, SJournal& journal);

// objid to altobjid of every Node that is a device; of equal keys the later Node wins.
void collectPairs(const SNode& node, std::map<std::string, std::string>& pairs, SJournal& journal);

}  // namespace fi_model
