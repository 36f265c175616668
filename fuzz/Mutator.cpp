#include "fuzz/Mutator.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int kBitsOfCounter = 12;

// Different names that the XML library's hash takes for the same.
std::string collidingName(std::size_t number) {
    std::string name;
    for (int bit = 0; bit < kBitsOfCounter; ++bit, number >>= 1) {
        name += (number & 1) != 0 ? "Al" : "BF";
    }
    return name;
}

void cut(std::string& text, std::size_t longest, std::size_t from) {
    if (text.size() > longest) {
        text.erase(std::min(from, longest), text.size() - longest);
    }
}

}  // namespace

CMutator::CMutator(std::vector<std::string> dictionary, std::uint64_t seed)
    : words(std::move(dictionary)), random(seed) {}

std::size_t CMutator::below(std::size_t limit) {
    return limit == 0 ? 0 : random() % limit;
}

std::string CMutator::change(std::string text, const std::vector<std::string>& others, std::size_t longest) {
    constexpr std::size_t kMostChanges = 4;
    for (std::size_t changes = 1 + below(kMostChanges); changes > 0; --changes) {
        changeOnce(text, others, longest);
    }
    return text;
}

void CMutator::changeOnce(std::string& text, const std::vector<std::string>& others, std::size_t longest) {
    enum { kByte, kWord, kErase, kCopy, kRepeat, kRepeatAgain, kEndOfOther, kBlockOfOther, kReplace, kCount };
    const std::size_t place = below(text.size() + 1);
    const std::string& other = others[below(others.size())];
    switch (below(kCount)) {
        case kByte:
            text.replace(place, 1, 1, static_cast<char>(random()));
            break;
        case kWord:
            text.insert(place, words.empty() ? "" : words[below(words.size())]);
            break;
        case kErase:
            text.erase(place, blockOf(text).size());
            break;
        case kCopy:
            text.insert(place, below(2) == 0 ? blockOf(text) : syntaxOf(text));
            break;
        case kRepeat:
        case kRepeatAgain:
            text.insert(place, repeat(wordOrBlockOf(text), longest));
            break;
        case kEndOfOther:
            text.replace(place, std::string::npos, other, below(other.size() + 1), std::string::npos);
            break;
        case kBlockOfOther:
            text.insert(place, blockOf(other));
            break;
        default:
            text = replaceAll(text, longest);
            break;
    }
    cut(text, longest, below(2) == 0 ? longest : below(text.size()));
}

std::string CMutator::blockOf(const std::string& text) {
    constexpr std::array<std::size_t, 5> kSizes{4, 16, 64, 512, 4096};
    const std::size_t longest = kSizes.at(below(kSizes.size()));
    return text.substr(below(text.size()), 1 + below(longest));
}

// A part between two separators, such as an element, a target or a line.
std::string CMutator::syntaxOf(const std::string& text) {
    constexpr std::size_t kMostParts = 12;
    constexpr const char* kSeparators = "<\n; ,[";
    const std::size_t begin = text.find_first_of(kSeparators, below(text.size()));
    std::size_t end = begin;
    for (std::size_t parts = 1 + below(kMostParts); parts > 0 && end != std::string::npos; --parts) {
        end = text.find_first_of(kSeparators, end + 1);
    }
    return end == std::string::npos ? blockOf(text) : text.substr(begin, end - begin);
}

std::string CMutator::wordOrBlockOf(const std::string& text) {
    switch (below(3)) {
        case 0:
            return words.empty() ? "" : words[below(words.size())];
        case 1:
            return blockOf(text);
        default:
            return syntaxOf(text);
    }
}

std::string CMutator::repeat(const std::string& part, std::size_t longest) {
    enum { kNumber, kCollidingName, kCount = 4 };
    const std::size_t kind = below(kCount);
    const std::size_t times = 1 + below(std::size_t{1} << (1 + below(kBitsOfCounter)));
    const std::size_t hole = below(part.size() + 1);
    std::string repeated;
    for (std::size_t i = 0; i < times && repeated.size() < longest && !part.empty(); ++i) {
        repeated.append(part, 0, hole);
        repeated += kind == kNumber ? std::to_string(i) : kind == kCollidingName ? collidingName(i) : "";
        repeated.append(part, hole, std::string::npos);
    }
    return repeated;
}

// Puts a short text in the place of each occurrence of another one.
std::string CMutator::replaceAll(const std::string& text, std::size_t longest) {
    constexpr std::size_t kLongestPart = 8;
    const std::string part = blockOf(text).substr(0, 1 + below(kLongestPart));
    const std::string replacement = wordOrBlockOf(text).substr(0, 4 * kLongestPart);
    if (part.empty()) {
        return text;
    }
    std::string changed;
    std::size_t from = 0;
    for (std::size_t next = text.find(part); next != std::string::npos && changed.size() < longest;
         next = text.find(part, from)) {
        changed.append(text, from, next - from).append(replacement);
        from = next + part.size();
    }
    return changed.append(text, from, std::string::npos);
}
