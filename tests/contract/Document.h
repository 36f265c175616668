#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/TraceRecorder.h"

// Documents, and the lines that a call must trace about them, both made from one description by the rules
// of documents and traces.
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

// What is traced of...
// ...the flag word of a backup:
Trace flagLine(const std::string& file, std::int32_t flagWord);
// ...the import of `documents`:
Trace importLines(const std::vector<SNode>& documents);
// ...an import that ends at a file that cannot be opened, behind `documents`:
Trace brokenImportLines(const std::vector<SNode>& documents);
// ...a document that was loaded, and of what became of it:
Trace parsedLines(const std::string& file, const SNode& document);
Trace outcomeLines(const std::string& file, const SNode& document, int state);

// Lines at level 4, and one at level 3.
Trace progress(const std::vector<std::string>& texts);
Trace failure(const std::string& text);

Trace operator+(Trace left, const Trace& right);

}  // namespace fi_test
