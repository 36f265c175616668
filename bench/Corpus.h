#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Inputs of calls. The same shape always gives the same bytes.
namespace fi_bench {

struct SShape {
    const char* name;
    std::size_t backups;
    // Nodes in each document, its root included. Each Node names one further target of one configuration. The
    // pairs of all documents name the first further target of every configuration, then the second ones, and
    // so on.
    std::size_t nodes;
    std::size_t configurations;
    // Further targets of each configuration.
    std::size_t targets;
    // Each Node is the only child of the one before. Only the innermost has data elements, and there is no
    // white space: to indent so deep a document would make its size quadratic.
    bool isNested = false;
};

// The six corpora by name.
const std::vector<SShape>& shapes();
const SShape& shapeOf(const std::string& name);

struct SCorpus {
    std::string configuration;
    // Paths of the documents, oldest first.
    std::vector<std::string> files;
    std::size_t bytes = 0;
};

// Writes the documents of `shape` into `folder`, with the configuration beside them in a file called
// "configuration".
SCorpus writeCorpus(const SShape& shape, const std::string& folder);

// A corpus that was written before.
SCorpus readCorpus(const std::string& folder);

// Makes one call of the library over a corpus and frees the selection. Returns the number of backups that
// were rotated. Ends the program when there is no selection.
std::size_t runCallOrExit(const SCorpus& corpus);

}  // namespace fi_bench
