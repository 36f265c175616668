#include "common/CFiDocumentLimits.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "common/document_prolog.h"

namespace {

// Encodings in which the byte '<' always is that character, and that character always is this byte: tags can
// be found without decoding the document.
constexpr std::string_view kKnownEncodings[] = {
    "UTF-8",  "UTF8",   "US-ASCII", "ASCII",  "LATIN1", "KOI8-R",  "KOI8-U", "SHIFT_JIS",
    "EUC-JP", "EUC-KR", "EUC-TW",   "GB2312", "GBK",    "GB18030", "BIG5",   "WINDOWS-31J",
};
// How the names of further such encodings begin. From UTF-16 on, a '<' has a NUL byte beside it, and
// startDocument is given no document with a NUL byte: no tag can be missed.
constexpr std::string_view kKnownFamilies[] = {
    "ISO-8859-", "ISO8859-", "ISO_8859-", "WINDOWS-125",    "CP125",
    "UTF-16",    "UTF-32",   "UCS-",      "ISO-10646-UCS-",
};

// Unlike std::toupper, the same in every locale.
char inCapitals(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

bool isSameButForCase(std::string_view name, std::string_view capitals) {
    return std::equal(name.begin(), name.end(), capitals.begin(), capitals.end(),
                      [](char character, char capital) { return inCapitals(character) == capital; });
}

bool isKnownEncoding(std::string_view name) {
    return std::any_of(std::begin(kKnownEncodings), std::end(kKnownEncodings),
                       [name](std::string_view known) { return isSameButForCase(name, known); }) ||
           std::any_of(std::begin(kKnownFamilies), std::end(kKnownFamilies), [name](std::string_view family) {
               return isSameButForCase(name.substr(0, family.size()), family);
           });
}

// Whether tags can be found in the bytes of the document. The XML library reads EBCDIC without a declaration
// when the document begins with these bytes, so they are looked for here, too.
bool isReadByItsBytes(std::string_view document) {
    constexpr std::string_view kEbcdicStart = "\x4C\x6F\xA7\x94";
    return document.substr(0, kEbcdicStart.size()) != kEbcdicStart && hasAtMostOneEncoding(document) &&
           isKnownEncoding(declaredEncoding(document).value_or("UTF-8"));
}

// Where the start tag at the start of `text` ends; the size of `text` when the tag has no end.
std::size_t endOfTag(std::string_view text) {
    std::size_t end = text.find_first_of("'\">");
    while (end != std::string_view::npos && text[end] != '>') {
        const std::size_t closing = text.find(text[end], end + 1);
        end = closing == std::string_view::npos ? closing : text.find_first_of("'\">", closing + 1);
    }
    return std::min(end, text.size());
}

// Whether the name of an element may begin with this byte, be it ASCII or part of another character.
bool beginsName(char character) {
    const char capital = inCapitals(character);
    return (capital >= 'A' && capital <= 'Z') || character == '_' || character == ':' ||
           static_cast<unsigned char>(character) >= 0x80;
}

bool isLongStartTag(std::string_view text) {
    return text.size() > 1 && beginsName(text[1]) && endOfTag(text) >= CFiDocumentLimits::kLongestTag;
}

// A tag holds no second '<', so a tag that is too long fills at least one block without a '<'. Only around
// such a block a tag is measured, which saves time: nearly all documents have none.
std::optional<std::size_t> longStartTagIn(std::string_view document) {
    constexpr std::size_t kBlock = CFiDocumentLimits::kLongestTag / 2;
    std::size_t block = 0;
    while (block + kBlock <= document.size()) {
        if (document.substr(block, kBlock).find('<') != std::string_view::npos) {
            block += kBlock;
            continue;
        }
        const std::size_t begin = document.rfind('<', block);
        const std::size_t next = std::min(document.find('<', block), document.size());
        if (begin != std::string_view::npos && isLongStartTag(document.substr(begin, next - begin))) {
            return begin;
        }
        block = next;
    }
    return std::nullopt;
}

bool isLong(std::u16string_view text) {
    return text.size() > CFiDocumentLimits::kLongestText;
}

}  // namespace

std::string CFiDocumentLimits::inWords(EExcess excess) {
    const auto moreThan = [](std::size_t most) { return "more than " + std::to_string(most); };
    switch (excess) {
        case EExcess::kNone:
            break;
        case EExcess::kBytes:
            return moreThan(kMostBytes) + " bytes";
        case EExcess::kEncoding:
            return "an encoding that is not read";
        case EExcess::kTag:
            return "a tag of " + moreThan(kLongestTag) + " bytes";
        case EExcess::kDtd:
            return "a DTD of " + moreThan(kLongestDtd) + " bytes";
        case EExcess::kDeclarations:
            return moreThan(kMostDeclarations) + " declarations in the DTD";
        case EExcess::kAttributes:
            return moreThan(kMostAttributes) + " attributes declared in the DTD";
        case EExcess::kLongDefault:
            return "a default of an attribute of " + moreThan(kLongestText) + " characters";
        case EExcess::kParameterEntity:
            return "a parameter entity";
        case EExcess::kNestedEntity:
            return "an entity that refers to another one";
        case EExcess::kLongEntity:
            return "an entity of " + moreThan(kLongestText) + " characters";
        case EExcess::kReferences:
            return moreThan(kMostReferences) + " references to entities";
        case EExcess::kNames:
            return moreThan(kMostNames) + " different element names";
        case EExcess::kDepth:
            return "elements nested " + moreThan(kMostDepth) + " deep";
    }
    return "";
}

CFiDocumentLimits::SExcess CFiDocumentLimits::startDocument(std::string_view document) {
    declarations = 0;
    attributes = 0;
    depth = 0;
    names.clear();
    if (document.size() > kMostBytes) {
        return {EExcess::kBytes, kMostBytes};
    }
    if (!isReadByItsBytes(document)) {
        return {EExcess::kEncoding, 0};
    }
    const std::optional<std::size_t> dtd = doctypeIn(document);
    if (dtd.has_value() && !doctypeEndsWithin(document.substr(*dtd), kLongestDtd)) {
        return {EExcess::kDtd, *dtd};
    }
    if (const auto tag = longStartTagIn(document)) {
        return {EExcess::kTag, *tag};
    }
    return {};
}

CFiDocumentLimits::EExcess CFiDocumentLimits::declareAttribute(const char16_t* value) {
    if (value != nullptr && isLong(value)) {
        return EExcess::kLongDefault;
    }
    ++attributes;
    return attributes > kMostAttributes ? EExcess::kAttributes : declareOther();
}

CFiDocumentLimits::EExcess CFiDocumentLimits::declareEntity(std::u16string_view name,
                                                            std::u16string_view value) {
    if (name.substr(0, 1) == u"%") {
        return EExcess::kParameterEntity;
    }
    if (value.find(u'&') != std::u16string_view::npos) {
        return EExcess::kNestedEntity;
    }
    return isLong(value) ? EExcess::kLongEntity : declareOther();
}

CFiDocumentLimits::EExcess CFiDocumentLimits::declareOther() {
    ++declarations;
    return declarations > kMostDeclarations ? EExcess::kDeclarations : EExcess::kNone;
}

CFiDocumentLimits::EExcess CFiDocumentLimits::startElement(const char16_t* name) {
    ++depth;
    if (depth > kMostDepth) {
        return EExcess::kDepth;
    }
    names.insert(name);
    return names.size() > kMostNames ? EExcess::kNames : EExcess::kNone;
}
