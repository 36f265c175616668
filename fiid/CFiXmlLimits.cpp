#include "fiid/CFiXmlLimits.h"

#include <algorithm>
#include <string_view>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc::XMLPlatformUtils;
using xercesc::XMLUni;

namespace {

// The words are ASCII, so that each byte is a character.
std::u16string messageOf(CFiDocumentLimits::EExcess excess) {
    const std::string words = CFiDocumentLimits::inWords(excess);
    return {words.begin(), words.end()};
}

// A place as a reader counts it: the column is that behind the last character that was read.
struct SPlace {
    XMLFileLoc line;
    XMLFileLoc column;
};

SPlace placeOf(std::string_view before) {
    const std::size_t lineEnd = before.rfind('\n');
    const std::size_t inLine =
        lineEnd == std::string_view::npos ? before.size() : before.size() - lineEnd - 1;
    return {static_cast<XMLFileLoc>(std::count(before.begin(), before.end(), '\n') + 1),
            static_cast<XMLFileLoc>(inLine + 1)};
}

}  // namespace

CFiXmlLimits::CFiXmlLimits() {
    references.setEntityExpansionLimit(CFiDocumentLimits::kMostReferences);
}

void CFiXmlLimits::applyTo(xercesc::SAX2XMLReader& reader) {
    reader.setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    reader.setProperty(XMLUni::fgXercesSecurityManager, &references);
    reader.setContentHandler(this);
    reader.setDeclarationHandler(this);
    reader.setDTDHandler(this);
}

void CFiXmlLimits::begin(const std::string& document) {
    const CFiDocumentLimits::SExcess excess = limits.startDocument(document);
    if (excess.kind != EExcess::kNone) {
        const SPlace place = placeOf(std::string_view(document).substr(0, excess.offset));
        throw CFiXmlExcess(messageOf(excess.kind).c_str(), nullptr, nullptr, place.line, place.column,
                           XMLPlatformUtils::fgMemoryManager);
    }
}

void CFiXmlLimits::throwIf(EExcess excess) const {
    if (excess != EExcess::kNone) {
        throw CFiXmlExcess(messageOf(excess).c_str(), *locator, XMLPlatformUtils::fgMemoryManager);
    }
}

void CFiXmlLimits::startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                                const xercesc::Attributes& attributes) {
    throwIf(limits.startElement(qname));
    if (handler != nullptr) {
        handler->startElement(uri, localname, qname, attributes);
    }
}

void CFiXmlLimits::endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) {
    limits.endElement();
    if (handler != nullptr) {
        handler->endElement(uri, localname, qname);
    }
}

void CFiXmlLimits::characters(const XMLCh* chars, XMLSize_t length) {
    if (handler != nullptr) {
        handler->characters(chars, length);
    }
}

void CFiXmlLimits::attributeDecl(const XMLCh* /*element*/, const XMLCh* /*attribute*/, const XMLCh* /*type*/,
                                 const XMLCh* /*mode*/, const XMLCh* value) {
    throwIf(limits.declareAttribute(value));
}

void CFiXmlLimits::elementDecl(const XMLCh* /*name*/, const XMLCh* /*model*/) {
    throwIf(limits.declareOther());
}

// The declaration alone opens nothing, so it is only counted. A reference to the entity makes the reader
// fail.
void CFiXmlLimits::externalEntityDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/,
                                      const XMLCh* /*systemId*/) {
    throwIf(limits.declareOther());
}

void CFiXmlLimits::internalEntityDecl(const XMLCh* name, const XMLCh* value) {
    throwIf(limits.declareEntity(name, value));
}

void CFiXmlLimits::notationDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/, const XMLCh* /*systemId*/) {
    throwIf(limits.declareOther());
}

void CFiXmlLimits::unparsedEntityDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/,
                                      const XMLCh* /*systemId*/, const XMLCh* /*notation*/) {
    throwIf(limits.declareOther());
}
