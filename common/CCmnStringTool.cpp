#include "common/CCmnStringTool.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

struct SEscape {
    std::string_view sequence;
    std::string_view replacement;
};

// The order matters: "&amp;" last, or a doubly escaped text would be decoded twice.
constexpr SEscape kEscapes[] = {
    {"&#39;", "'"}, {"&quot;", "\""}, {"&gt;", ">"}, {"&lt;", "<"}, {"&amp;", "&"},
};

std::size_t countOccurrences(const std::string& text, std::string_view sequence) {
    std::size_t count = 0;
    for (std::size_t hit = text.find(sequence); hit != std::string::npos;
         hit = text.find(sequence, hit + sequence.size())) {
        ++count;
    }
    return count;
}

std::string replaceAll(const std::string& text, const SEscape& escape) {
    const std::size_t count = countOccurrences(text, escape.sequence);
    std::string result;
    result.reserve(text.size() - count * (escape.sequence.size() - escape.replacement.size()));

    std::size_t copied = 0;
    for (std::size_t hit = text.find(escape.sequence); hit != std::string::npos;
         hit = text.find(escape.sequence, copied)) {
        result.append(text, copied, hit - copied).append(escape.replacement);
        copied = hit + escape.sequence.size();
    }
    result.append(text, copied);

    // All callers take the result for a C string, so it ends at its first NUL byte.
    result.resize(std::strlen(result.c_str()));
    return result;
}

}  // namespace

std::string CCmnStringTool::convertFromXmlSpecialCharacters(const std::string& input) {
    std::string result = input;
    for (const SEscape& escape : kEscapes) {
        result = replaceAll(result, escape);
    }
    return result;
}
