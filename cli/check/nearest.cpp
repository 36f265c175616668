#include "cli/check/nearest.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "cli/base/text.h"

namespace fi_rotate {
namespace {

// Longer names are not compared, to limit the time that it takes.
constexpr std::size_t kLongestCompared = 200;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    const std::size_t begin = std::min(text.find_first_not_of(kWhiteSpace), text.size());
    const std::size_t end = text.find_last_not_of(kWhiteSpace) + 1;
    return begin < end ? text.substr(begin, end - begin) : std::string_view();
}

// The digits of `text`, or all the rest of it in small letters.
std::string partOf(std::string_view text, bool areDigits) {
    std::string part;
    for (const char character : text) {
        if ((character >= '0' && character <= '9') == areDigits) {
            part += lowerCase(character);
        }
    }
    return part;
}

}  // namespace

bool differOnlyInDigits(std::string_view left, std::string_view right) {
    left = trimmed(left);
    right = trimmed(right);
    return partOf(left, true) != partOf(right, true) && partOf(left, false) == partOf(right, false);
}

std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit) {
    left = trimmed(left);
    right = trimmed(right);
    if (left.size() > right.size()) {
        std::swap(left, right);
    }
    if (right.size() > kLongestCompared || right.size() - left.size() >= limit) {
        return limit;
    }
    // Of the part of `left` that was gone through, to each part of `right` from its start.
    std::vector<std::size_t> distances(right.size() + 1);
    std::iota(distances.begin(), distances.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = distances[0];
        distances[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t replaced = diagonal + (lowerCase(left[i]) == lowerCase(right[j]) ? 0 : 1);
            diagonal = distances[j + 1];
            distances[j + 1] = std::min({replaced, diagonal + 1, distances[j] + 1});
        }
        if (*std::min_element(distances.begin(), distances.end()) >= limit) {
            return limit;
        }
    }
    return std::min(distances.back(), limit);
}

}  // namespace fi_rotate
