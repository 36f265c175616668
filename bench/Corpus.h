#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Input for calls, made by rule: the same shape gives the same bytes.
namespace fi_bench {

struct SShape {
    const char* name;
    std::size_t backups;
    // In each document, its root included. Each Node holds one further target of one configuration; the
    // pairs of all documents go through all configurations, then through their next targets.
    std::size_t nodes;
    std::size_t configurations;
    // Further targets of each configuration.
    std::size_t targets;
    // Each Node the only child of the one before, without elements but for the innermost and without
    // white space: indenting so deep a document would make it quadratic.
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

// One call of the library over a corpus, the selection released. Ends the program when it gives none.
// Returns the number of backups that were rotated.
std::size_t runCall(const SCorpus& corpus);

}  // namespace fi_bench
