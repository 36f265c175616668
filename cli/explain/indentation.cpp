#include "cli/explain/indentation.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "host/trace_text.h"

namespace fi_rotate {
namespace {

bool isOfTopNode(std::string_view text) {
    constexpr std::array kOfTree{ETraceText::kNodeObjid, ETraceText::kNodeAltobjid, ETraceText::kNodeType};
    return text.substr(0, 1) == " " && std::any_of(kOfTree.begin(), kOfTree.end(), [text](ETraceText kind) {
               return nodeTextIn(kind, text).has_value();
           });
}

// The length of all copies of `escape` that `text` begins with.
std::size_t lengthOfAll(std::string_view escape, std::string_view text) {
    std::size_t length = 0;
    while (text.substr(length, escape.size()) == escape) {
        length += escape.size();
    }
    return length;
}

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

}  // namespace

CReplacedTabs::CReplacedTabs(std::string_view text) : line(text) {
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == ' ' && isOfTopNode(line.substr(i))) {
            nodes.push_back(i);
        }
    }
}

std::optional<SReplacedTabs> CReplacedTabs::at(std::size_t begin) const {
    const auto node = std::upper_bound(nodes.begin(), nodes.end(), begin);
    if (node == nodes.end()) {
        return std::nullopt;
    }
    constexpr std::array<std::string_view, 7> kEscapes{"#011", R"(\t)",     R"(\011)", R"(\x09)",
                                                       "^I",   R"(\u0009)", "<09>"};
    for (const std::string_view escape : kEscapes) {
        const std::size_t length = lengthOfAll(escape, line.substr(begin));
        if (length != 0 && std::binary_search(node, nodes.end(), begin + length)) {
            return SReplacedTabs{length, true};
        }
    }
    const std::string_view marks = line.substr(begin, *node - begin);
    const bool hasWord = std::any_of(marks.begin(), marks.end(), isWordCharacter);
    return hasWord ? std::nullopt : std::optional<SReplacedTabs>({marks.size(), false});
}

}  // namespace fi_rotate
