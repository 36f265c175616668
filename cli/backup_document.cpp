#include "cli/backup_document.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

#include "cli/printable.h"

namespace fi_rotate {
namespace {

constexpr std::string_view kSectionEnd = "]]>";

// Characters that no XML document can hold, in whatever form.
bool canStandInXml(const std::string& text) {
    const auto isControl = [](char character) {
        return character >= '\0' && character < ' ' && character != '\t';
    };
    return asUtf8(text) == text && std::none_of(text.begin(), text.end(), isControl) &&
           text.find("\xEF\xBF\xBE") == std::string::npos && text.find("\xEF\xBF\xBF") == std::string::npos;
}

// A reference would end the piece of text before it, and the library takes the last piece for the whole. So a
// name with a character of markup stands in a CDATA section.
std::string asOnePiece(const std::string& text) {
    const bool needsSection = text.find_first_of("<&") != std::string::npos;
    const bool holdsSectionEnd = text.find(kSectionEnd) != std::string::npos;
    if (!canStandInXml(text) || holdsSectionEnd) {
        throw std::invalid_argument(fmt::format("\"{}\" cannot stand in an XML document", asPrintable(text)));
    }
    return needsSection ? fmt::format("<![CDATA[{}]]>", text) : text;
}

std::string identifier(const std::string& target) {
    return asOnePiece("UDID##EXAMPLE##ARRAY##" + target);
}

}  // namespace

std::string toDocument(const std::string& timeStamp, const std::vector<SChoice>& choices) {
    std::string text = fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<snapshotBackup>\n"
        "  <Node>\n"
        "    <timeStamp>{}</timeStamp>\n",
        timeStamp);
    for (const SChoice& choice : choices) {
        text += fmt::format(
            "    <Node>\n"
            "      <objid>{}</objid>\n"
            "      <altobjid>{}</altobjid>\n"
            "    </Node>\n",
            identifier(choice.first), identifier(choice.chosen));
    }
    return text + "  </Node>\n</snapshotBackup>\n";
}

}  // namespace fi_rotate
