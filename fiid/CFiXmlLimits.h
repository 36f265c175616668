#pragma once

#include <xercesc/sax2/DeclHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/util/SecurityManager.hpp>

// Whether the library was built to keep documents within these limits.
#ifdef FI_ROTATION_HARDENED_XML
constexpr bool kHardenedXml = true;
#else
constexpr bool kHardenedXml = false;
#endif

// What a document may not ask of a reader: to open a file or a connection, or to make much text of little.
// A document that does so is malformed: the reader reports a fatal error and stops.
//
// Nothing external is opened. References to entities are counted, but not those within a DTD; so an entity
// may not refer to another one, and neither an entity nor the default of an attribute may be long. Entities
// of the DTD itself (parameter entities) may not be declared at all. Attributes are counted, because every
// element costs the reader a look at all that are declared for it.
class CFiXmlLimits : private xercesc::DeclHandler {
public:
    // References to entities that a document may make; the five predefined ones are not counted.
    static constexpr XMLSize_t kMostReferences = 100;
    // Characters that an entity or the default of an attribute may have.
    static constexpr XMLSize_t kLongestText = 256;
    // Attributes that a DTD may declare.
    static constexpr XMLSize_t kMostAttributes = 256;

    CFiXmlLimits();

    // These limits are borrowed by `reader` and must outlive it.
    void applyTo(xercesc::SAX2XMLReader& reader);

    // Another document follows, with counts of its own.
    void startDocument() { attributes = 0; }

private:
    void attributeDecl(const XMLCh* element, const XMLCh* attribute, const XMLCh* type, const XMLCh* mode,
                       const XMLCh* value) override;
    void elementDecl(const XMLCh* name, const XMLCh* model) override;
    void externalEntityDecl(const XMLCh* name, const XMLCh* publicId, const XMLCh* systemId) override;
    void internalEntityDecl(const XMLCh* name, const XMLCh* value) override;

    xercesc::SecurityManager references;
    XMLSize_t attributes = 0;
};
