#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

// What a document may ask of a reader, so that reading takes time and memory in proportion to the bytes of
// the document. The first library when it is built hardened, the host library and fi-rotate all use this
// class, so that they stop reading the same documents at the same places. What follows differs: the first
// library uses the Nodes before that place and goes on with the call, the host library decides nothing unless
// the host permits such documents, and `fi-rotate check` reports it.
//
// The XML library looks names up in hash tables whose hash everybody can foresee: names that collide cost as
// many comparisons as there are names before them. So different element names are counted, and start tags,
// which hold the names of attributes, and DTDs, which hold all kinds of names, may not be long. It looks at
// every declared attribute in every element; and the trace of a tree indents each Node by its depth.
//
// References to entities are counted, but not those within a DTD; so an entity may not refer to another one,
// and neither an entity nor the default of an attribute may be long. Entities of the DTD itself (parameter
// entities) may not be declared at all.
class CFiDocumentLimits {
public:
    static constexpr std::size_t kMostBytes = std::size_t{128} << 20;
    // Bytes from the '<' of a start tag to its '>'. What looks like a start tag in a comment or a CDATA
    // section is measured too.
    static constexpr std::size_t kLongestTag = 8192;
    // Bytes from "<!DOCTYPE" to its '>'.
    static constexpr std::size_t kLongestDtd = 16384;
    // Attributes, entities, elements and notations.
    static constexpr std::size_t kMostDeclarations = 256;
    // Attributes that a DTD may declare.
    static constexpr std::size_t kMostAttributes = 32;
    // References to entities that a document may make; the five predefined ones are not counted.
    static constexpr std::size_t kMostReferences = 100;
    // Characters that an entity or the default of an attribute may have.
    static constexpr std::size_t kLongestText = 256;
    // Different names of elements.
    static constexpr std::size_t kMostNames = 256;
    // Elements within one another.
    static constexpr std::size_t kMostDepth = 256;

    enum class EExcess {
        kNone,
        kBytes,
        kEncoding,
        kTag,
        kDtd,
        kDeclarations,
        kAttributes,
        kLongDefault,
        kParameterEntity,
        kNestedEntity,
        kLongEntity,
        kReferences,
        kNames,
        kDepth
    };
    // What exceeds a limit, in words for a message. Only fi-rotate uses the words for kReferences: in the
    // libraries, the XML library counts references and has words of its own.
    static std::string inWords(EExcess excess);

    struct SExcess {
        EExcess kind = EExcess::kNone;
        // In bytes from the start of the document.
        std::size_t offset = 0;
    };
    // Begins a document and sets all counts to zero. Returns the limit that it exceeds, as far as its bytes
    // show that before they are parsed. `document` must not hold a NUL byte.
    SExcess startDocument(std::string_view document);

    // The functions below count what the reader meets, and return the limit that is exceeded then, or kNone.

    // `value` is the default of the attribute; null when it has none.
    EExcess declareAttribute(const char16_t* value);
    // The names of parameter entities begin with '%'.
    EExcess declareEntity(std::u16string_view name, std::u16string_view value);
    // A declaration of any other kind.
    EExcess declareOther();

    // Names are told apart by their addresses: while it reads a document, the XML library stores each name
    // once.
    EExcess startElement(const char16_t* name);
    void endElement() { --depth; }

private:
    std::size_t declarations = 0;
    std::size_t attributes = 0;
    std::size_t depth = 0;
    std::unordered_set<const char16_t*> names;
};
