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

// Of as many of them as `text` begins with.
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

std::optional<SReplacedTabs> replacedTabs(std::string_view text) {
    constexpr std::array<std::string_view, 7> kEscapes{"#011", R"(\t)",     R"(\011)", R"(\x09)",
                                                       "^I",   R"(\u0009)", "<09>"};
    for (const std::string_view escape : kEscapes) {
        const std::size_t length = lengthOfAll(escape, text);
        if (length != 0 && isOfTopNode(text.substr(length))) {
            return SReplacedTabs{length, true};
        }
    }
    const auto* const word = std::find_if(text.begin(), text.end(), isWordCharacter);
    const auto marks = static_cast<std::size_t>(word - text.begin());
    for (std::size_t length = 1; length < marks; ++length) {
        // The text of a Node begins with one blank. Comparing only there keeps long runs of blanks cheap.
        const bool isLastBlank = text[length] == ' ' && text.substr(length + 1, 1) != " ";
        if (isLastBlank && isOfTopNode(text.substr(length))) {
            return SReplacedTabs{length, false};
        }
    }
    return std::nullopt;
}

}  // namespace fi_rotate
