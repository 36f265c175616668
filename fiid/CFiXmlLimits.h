#pragma once

#include <string>

#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "common/CFiDocumentLimits.h"

// Whether this library is built hardened, so that it keeps documents within these limits. The host library
// is.
#ifdef FI_ROTATION_HARDENED_XML
constexpr bool kHardenedXml = true;
#else
constexpr bool kHardenedXml = false;
#endif

// Thrown when a document exceeds a limit that is kept here. Says which one, and where.
class CFiXmlExcess : public xercesc::SAXParseException {
public:
    using SAXParseException::SAXParseException;
};

// Keeps a document from making the reader open a file or a connection, or take more time and memory than its
// size justifies (CFiDocumentLimits). It stands between the reader and the handler of the reader's events.
class CFiXmlLimits : private xercesc::DefaultHandler {
public:
    CFiXmlLimits();

    // Sets `reader` up to keep to these limits. They are borrowed and must outlive it.
    void applyTo(xercesc::SAX2XMLReader& reader);

    // Sets the handler of the content that is within the limits. Borrowed; may be null.
    void setHandler(xercesc::ContentHandler* newHandler) { handler = newHandler; }

    // Begins a document and sets all counts to zero. When the document exceeds a limit, this function or the
    // reader throws a CFiXmlExcess. Two things are left to the XML library, which reports them as fatal
    // errors in its own words: too many references to entities, which `references` counts, and a reference to
    // a file.
    void begin(const std::string& document);

private:
    using EExcess = CFiDocumentLimits::EExcess;

    // Throws a CFiXmlExcess when a limit is exceeded; not when `excess` is kNone.
    void throwIf(EExcess excess) const;

    void setDocumentLocator(const xercesc::Locator* given) override { locator = given; }
    void startElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname,
                      const xercesc::Attributes& attributes) override;
    void endElement(const XMLCh* uri, const XMLCh* localname, const XMLCh* qname) override;
    void characters(const XMLCh* chars, XMLSize_t length) override;

    void attributeDecl(const XMLCh* element, const XMLCh* attribute, const XMLCh* type, const XMLCh* mode,
                       const XMLCh* value) override;
    void elementDecl(const XMLCh* name, const XMLCh* model) override;
    void externalEntityDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void internalEntityDecl(const XMLCh* name, const XMLCh* value) override;
    void notationDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void unparsedEntityDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId,
                            const XMLCh* notation) override;

    xercesc::SecurityManager references;
    CFiDocumentLimits limits;
    xercesc::ContentHandler* handler = nullptr;
    // Where the reader is in the document that it reads.
    const xercesc::Locator* locator = nullptr;
};
