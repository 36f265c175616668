#include "fiid/CFiXmlLimits.h"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc::XMLString;
using xercesc::XMLUni;

namespace {

// The reader makes a fatal error of the document out of it.
[[noreturn]] void refuse() {
    ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_CouldNotOpenExtEntity,
                       xercesc::XMLPlatformUtils::fgMemoryManager);
}

bool isLong(const XMLCh* text) {
    return XMLString::stringLen(text) > CFiXmlLimits::kLongestText;
}

}  // namespace

CFiXmlLimits::CFiXmlLimits() {
    references.setEntityExpansionLimit(kMostReferences);
}

void CFiXmlLimits::applyTo(xercesc::SAX2XMLReader& reader) {
    reader.setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    reader.setProperty(XMLUni::fgXercesSecurityManager, &references);
    reader.setDeclarationHandler(this);
}

void CFiXmlLimits::attributeDecl(const XMLCh* /*element*/, const XMLCh* /*attribute*/, const XMLCh* /*type*/,
                                 const XMLCh* /*mode*/, const XMLCh* value) {
    ++attributes;
    // Every element gets the default anew.
    if (attributes > kMostAttributes || isLong(value)) {
        refuse();
    }
}

void CFiXmlLimits::elementDecl(const XMLCh* /*name*/, const XMLCh* /*model*/) {}

void CFiXmlLimits::externalEntityDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/,
                                      const XMLCh* /*systemId*/) {
    // A reference to it fails, and without one nothing is opened.
}

void CFiXmlLimits::internalEntityDecl(const XMLCh* name, const XMLCh* value) {
    const bool isParameterEntity = name[0] == u'%';
    const bool refersToEntity = XMLString::indexOf(value, u'&') >= 0;
    if (isParameterEntity || refersToEntity || isLong(value)) {
        refuse();
    }
}
