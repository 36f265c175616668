#include "tests/model/Document.h"

namespace fi_model {
namespace {

std::string doctype(const std::string& attributes) {
    return "<!DOCTYPE fiid [<!ENTITY host \"" + std::string(kHostEntityText) + "\">" + attributes + "]>";
}

std::string xmlText(const Token& token) {
    using Kind = Token::Kind;
    switch (token.kind) {
        case Kind::kDeclaration:
        case Kind::kText:
        case Kind::kDamage:
            return token.text;
        case Kind::kDoctype:
            return doctype("");
        case Kind::kDoctypeTwice:
            return doctype("<!ATTLIST fiid a CDATA #IMPLIED a CDATA #IMPLIED>");
        case Kind::kOpen:
            return "<" + token.text + token.attributes + ">";
        case Kind::kClose:
            return "</" + token.text + ">";
        case Kind::kEmpty:
            return "<" + token.text + token.attributes + "/>";
        case Kind::kReference:
            return "&" + token.text + ";";
        case Kind::kCdata:
            return "<![CDATA[" + token.text + "]]>";
        case Kind::kComment:
            return "<!--" + token.text + "-->";
        case Kind::kInstruction:
            return "<?" + token.text + "?>";
        case Kind::kNulLine:
            return std::string("\n\0", 2) + token.text + "\n";
        case Kind::kInvalidByte:
            // At the very end the byte would pass for a character that was cut off, and what
            // stands before it would be read.
            return "\xFF (no UTF-8)";
    }
    return "";
}

}  // namespace

std::string xmlText(const Document& document) {
    std::string text;
    for (const Token& token : document.tokens) {
        text += xmlText(token);
    }
    return text;
}

}  // namespace fi_model
