#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

// Makes inputs out of others: changes a byte, adds words, removes, copies, repeats or replaces parts. A part
// may be repeated thousands of times with a counter in it, since only large inputs with different names show
// costs that grow with their square.
class CMutator {
public:
    CMutator(std::vector<std::string> dictionary, std::uint64_t seed);

    // `others` must not be empty. The result has at most `longest` bytes.
    std::string change(std::string text, const std::vector<std::string>& others, std::size_t longest);

    // A random number below `limit`, or 0 when that is 0.
    std::size_t below(std::size_t limit);

private:
    void changeOnce(std::string& text, const std::vector<std::string>& others, std::size_t longest);
    std::string blockOf(const std::string& text);
    std::string syntaxOf(const std::string& text);
    std::string wordOrBlockOf(const std::string& text);
    std::string repeat(const std::string& part, std::size_t longest);
    std::string replaceAll(const std::string& text, std::size_t longest);

    std::vector<std::string> words;
    std::mt19937_64 random;
};
