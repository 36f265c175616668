#include "cli/check/configuration_text.h"

#include <algorithm>
#include <utility>

#include "cli/printable.h"

namespace fi_rotate {
namespace {

struct SReference {
    std::string_view text;
    char meaning;
};
// None of them can overlap another, and no meaning makes a new one but '&', which the library decodes last.
// So one pass over the text decodes like its five.
constexpr SReference kReferences[] = {
    {"&#39;", '\''}, {"&quot;", '"'}, {"&gt;", '>'}, {"&lt;", '<'}, {"&amp;", '&'},
};

const SReference* referenceAt(std::string_view text) {
    const auto* const found =
        std::find_if(std::begin(kReferences), std::end(kReferences), [text](const SReference& reference) {
            return text.substr(0, reference.text.size()) == reference.text;
        });
    return found == std::end(kReferences) ? nullptr : found;
}

}  // namespace

CConfigurationText::CConfigurationText(const std::string& text) : given(text), lines(given) {
    const std::string_view read = given.substr(0, given.find('\0'));
    for (std::size_t offset = 0; offset < read.size();) {
        const SReference* const reference = read[offset] == '&' ? referenceAt(read.substr(offset)) : nullptr;
        decoded += reference == nullptr ? read[offset] : reference->meaning;
        offsets.push_back(offset);
        offset += reference == nullptr ? 1 : reference->text.size();
    }
}

std::vector<SPiece> CConfigurationText::split(const SPiece& piece, const char* separators) const {
    std::vector<SPiece> pieces;
    std::size_t begin = piece.text.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(piece.text.find_first_of(separators, begin), piece.text.size());
        const std::string_view part = piece.text.substr(begin, end - begin);
        pieces.push_back({part, offsets[static_cast<std::size_t>(part.data() - decoded.data())]});
        begin = piece.text.find_first_not_of(separators, end);
    }
    return pieces;
}

SFinding CConfigurationText::findingAt(EHazard hazard, std::size_t offset, std::string what) const {
    return {hazard, lines.at(offset), std::move(what)};
}

}  // namespace fi_rotate
