#pragma once

#include <xercesc/sax2/DeclHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "common/CFiDtdLimits.h"

// Whether the library was built to keep documents within these limits.
#ifdef FI_ROTATION_HARDENED_XML
constexpr bool kHardenedXml = true;
#else
constexpr bool kHardenedXml = false;
#endif

// What a document may not ask of a reader: to open a file or a connection, or to make much text of little
// (CFiDtdLimits). A document that does so is malformed: the reader reports a fatal error and stops. Nothing
// external is opened.
class CFiXmlLimits : private xercesc::DeclHandler {
public:
    CFiXmlLimits();

    // These limits are borrowed by `reader` and must outlive it.
    void applyTo(xercesc::SAX2XMLReader& reader);

    // Another document follows, with counts of its own.
    void startDocument() { dtd.startDocument(); }

private:
    void attributeDecl(const XMLCh* element, const XMLCh* attribute, const XMLCh* type, const XMLCh* mode,
                       const XMLCh* value) override;
    void elementDecl(const XMLCh* name, const XMLCh* model) override;
    void externalEntityDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void internalEntityDecl(const XMLCh* name, const XMLCh* value) override;

    xercesc::SecurityManager references;
    CFiDtdLimits dtd;
};
