#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Other ways to read the documents of a corpus.
namespace fi_bench {

std::string readFile(const std::string& file);

// The least that a call must cost: reads and parses every file with the SAX2 reader alone, configured as in
// the library, and ignores the events. The XML library must be initialised.
void parseWithBareReader(const std::vector<std::string>& files);

// Reads every file, gathers the identifier pairs of each document in a map, and returns their number.
std::size_t gatherWithPugixml(const std::vector<std::string>& files);
std::size_t gatherWithExpat(const std::vector<std::string>& files);

}  // namespace fi_bench
