#include "tests/model/Document.h"

namespace fi_model {
namespace {

std::string doctype(const std::string& attributes) {
    return "<!DOCTYPE fiid [<!ENTITY host \"" + std::string(kHostEntityText) + "\">" + attributes + "]>";
}

std::string xmlText(const SToken& token) {
    using EKind = SToken::EKind;
    switch (token.kind) {
        case EKind::kDeclaration:
        case EKind::kText:
        case EKind::kDamage:
            return token.text;
        case EKind::kDoctype:
            return doctype("");
        case EKind::kDoctypeTwice:
            return doctype("<!ATTLIST fiid a CDATA #IMPLIED a CDATA #IMPLIED>");
        case EKind::kOpen:
            return "<" + token.text + token.attributes + ">";
        case EKind::kClose:
            return "</" + token.text + ">";
        case EKind::kEmpty:
            return "<" + token.text + token.attributes + "/>";
        case EKind::kReference:
            return "&" + token.text + ";";
        case EKind::kCdata:
            return "<![CDATA[" + token.text + "]]>";
        case EKind::kComment:
            return "<!--" + token.text + "-->";
        case EKind::kInstruction:
            return "<?" + token.text + "?>";
        case EKind::kNulLine:
            return std::string("\n\0", 2) + token.text + "\n";
        case EKind::kInvalidByte:
            // More text follows the byte: at the very end of the document it would be taken for a
            // character that is cut off, and the text before it would be read.
            return "\xFF (no UTF-8)";
    }
    return "";
}

}  // namespace

std::string xmlText(const SDocument& document) {
    std::string text;
    for (const SToken& token : document.tokens) {
        text += xmlText(token);
    }
    return text;
}

}  // namespace fi_model
