#pragma once

#include <string>
#include <vector>

namespace fi_model {

// One piece of markup or text, as the document's author wrote it. A list of tokens need not be
// well-formed: a list that ends too early is a document that was cut off.
struct SToken {
    enum class EKind {
        kDeclaration,   // the XML declaration, text as it stands
        kDoctype,       // declares the entity "host"
        kDoctypeTwice,  // the same, and declares an attribute twice, which gives one warning
        kOpen,          // start tag, text is the name
        kClose,         // end tag, text is the name
        kEmpty,         // self-closing tag, text is the name
        kText,          // character data without markup
        kReference,     // text is the name between '&' and ';'
        kCdata,         // text is the content
        kComment,       // text is the content
        kInstruction,   // text is the content
        kNulLine,       // a line end, then a line whose first byte is NUL and which is not read
        kDamage,        // ill-formed markup, text as it stands
        kInvalidByte,   // a byte that is no UTF-8; only in documents of less than one block
    };
    EKind kind = EKind::kText;
    std::string text;
    // Of kOpen and kEmpty, with the space before it.
    std::string attributes;
};

struct SDocument {
    std::vector<SToken> tokens;
    // The name is that of a folder, which opens and reads as an empty text.
    bool isDirectory = false;
};

// Replacement text of the entity that both kinds of document type declare.
inline constexpr const char* kHostEntityText = "hostname";

// The bytes of the file.
std::string xmlText(const SDocument& document);

}  // namespace fi_model
