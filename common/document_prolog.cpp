#include "common/document_prolog.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kWhiteSpace = " \t\r\n";
constexpr std::string_view kEncoding = "encoding";

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// What may stand before the DOCTYPE.
struct SSkipped {
    std::string_view start;
    std::string_view end;
};
constexpr SSkipped kSkipped[] = {
    {kByteOrderMark, ""}, {" ", ""}, {"\t", ""}, {"\r", ""}, {"\n", ""}, {"<!--", "-->"}, {"<?", "?>"},
};

// How many bytes the first of these takes at the start of `text`; 0 when none of them stands there.
std::size_t skippedAt(std::string_view text) {
    const auto* const found =
        std::find_if(std::begin(kSkipped), std::end(kSkipped),
                     [text](const SSkipped& row) { return startsWith(text, row.start); });
    if (found == std::end(kSkipped)) {
        return 0;
    }
    const std::size_t end = text.find(found->end, found->start.size());
    return end == std::string_view::npos ? 0 : end + found->end.size();
}

// The value of an attribute, given the text behind the attribute's name.
std::optional<std::string_view> valueAt(std::string_view text) {
    const std::size_t equals = text.find_first_not_of(kWhiteSpace);
    if (equals == std::string_view::npos || text[equals] != '=') {
        return std::nullopt;
    }
    const std::size_t begin = text.find_first_not_of(kWhiteSpace, equals + 1);
    if (begin == std::string_view::npos || (text[begin] != '"' && text[begin] != '\'')) {
        return std::nullopt;
    }
    const std::size_t end = text.find(text[begin], begin + 1);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    return text.substr(begin + 1, end - begin - 1);
}

// How many bytes to go on at the start of `text`: over a whole quoted text, comment or processing
// instruction, because a '>' or a bracket within it does not end the DTD; over all of `text` when that has no
// end; else 1.
std::size_t quotedOrSkipped(std::string_view text) {
    if (text[0] == '"' || text[0] == '\'') {
        return std::min(text.find(text[0], 1), text.size() - 1) + 1;
    }
    if (startsWith(text, "<!--") || startsWith(text, "<?")) {
        const std::size_t skipped = skippedAt(text);
        return skipped == 0 ? text.size() : skipped;
    }
    return 1;
}

// The XML declaration; empty when the document has none.
std::string_view xmlDeclaration(std::string_view document) {
    if (startsWith(document, kByteOrderMark)) {
        document.remove_prefix(kByteOrderMark.size());
    }
    return startsWith(document, "<?xml") ? document.substr(0, document.find("?>")) : std::string_view();
}

}  // namespace

std::optional<std::string_view> declaredEncoding(std::string_view document) {
    const std::string_view declaration = xmlDeclaration(document);
    const std::size_t attribute = declaration.find(kEncoding);
    return attribute == std::string_view::npos ? std::nullopt
                                               : valueAt(declaration.substr(attribute + kEncoding.size()));
}

bool hasAtMostOneEncoding(std::string_view document) {
    const std::string_view declaration = xmlDeclaration(document);
    return declaration.find(kEncoding) == declaration.rfind(kEncoding);
}

std::optional<std::size_t> doctypeIn(std::string_view document) {
    std::size_t offset = 0;
    while (const std::size_t skipped = skippedAt(document.substr(offset))) {
        offset += skipped;
    }
    if (startsWith(document.substr(offset), "<!DOCTYPE")) {
        return offset;
    }
    return std::nullopt;
}

bool doctypeEndsWithin(std::string_view text, std::size_t most) {
    const std::string_view looked = text.substr(0, most);
    bool isInSubset = false;
    std::size_t offset = 0;
    while ((offset = looked.find_first_of("'\"<>[]", offset)) != std::string_view::npos) {
        const std::string_view rest = looked.substr(offset);
        if (rest[0] == '>' && !isInSubset) {
            return true;
        }
        if (rest[0] == '[' || rest[0] == ']') {
            isInSubset = rest[0] == '[';
        }
        offset += quotedOrSkipped(rest);
    }
    return false;
}
