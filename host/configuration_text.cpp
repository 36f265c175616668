#include "host/configuration_text.h"

#include <algorithm>
#include <iterator>

namespace fi_rotate {
namespace {

// None of them can overlap another, and no meaning makes a new one but '&', which the library decodes last.
// So one pass over the text decodes like its five.
constexpr SReference kReferences[] = {
    {"&#39;", '\''}, {"&quot;", '"'}, {"&gt;", '>'}, {"&lt;", '<'}, {"&amp;", '&'},
};

}  // namespace

const SReference* referenceAt(std::string_view text) {
    const auto* const found =
        std::find_if(std::begin(kReferences), std::end(kReferences), [text](const SReference& reference) {
            return text.substr(0, reference.text.size()) == reference.text;
        });
    return found == std::end(kReferences) ? nullptr : found;
}

std::optional<SLongEnclosure> findLongEnclosure(std::string_view configuration) {
    // No reference stands for '#'.
    constexpr std::string_view kBehindEnclosure = "##";
    constexpr std::string_view kSeparators = "&\n\r;";
    const std::string_view text = configuration.substr(0, configuration.find('\0'));
    SLongEnclosure enclosure;
    bool isInEnclosure = true;
    for (std::size_t i = 0; i < text.size();) {
        const SReference* const reference = text[i] == '&' ? referenceAt(text.substr(i)) : nullptr;
        const char character = reference == nullptr ? text[i] : reference->meaning;
        const std::size_t next = i + (reference == nullptr ? 1 : reference->text.size());
        if (kSeparators.find(character) != std::string_view::npos) {
            enclosure = {next, 0};
            isInEnclosure = true;
        } else if (text.substr(i, kBehindEnclosure.size()) == kBehindEnclosure) {
            if (isInEnclosure && enclosure.length > kLongestEnclosure) {
                return enclosure;
            }
            isInEnclosure = false;
        } else {
            ++enclosure.length;
        }
        i = next;
    }
    return std::nullopt;
}

}  // namespace fi_rotate
