#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

// Splits one input into parts at lines "%%", into at most `most`. There is always one, which may be empty.
inline std::vector<std::string> partsOf(const std::string& bytes, std::size_t most) {
    const std::string separator = "\n%%\n";
    std::vector<std::string> parts;
    std::size_t begin = 0;
    while (begin <= bytes.size() && parts.size() < most) {
        const std::size_t end = std::min(bytes.find(separator, begin), bytes.size());
        parts.push_back(bytes.substr(begin, end - begin));
        begin = end + separator.size();
    }
    return parts;
}
