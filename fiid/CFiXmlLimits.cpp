#include "fiid/CFiXmlLimits.h"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc::XMLUni;

namespace {

// The reader makes a fatal error of the document out of it.
void refuseIf(CFiDtdLimits::EExcess excess) {
    if (excess != CFiDtdLimits::EExcess::kNone) {
        ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_CouldNotOpenExtEntity,
                           xercesc::XMLPlatformUtils::fgMemoryManager);
    }
}

}  // namespace

CFiXmlLimits::CFiXmlLimits() {
    references.setEntityExpansionLimit(CFiDtdLimits::kMostReferences);
}

void CFiXmlLimits::applyTo(xercesc::SAX2XMLReader& reader) {
    reader.setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    reader.setProperty(XMLUni::fgXercesSecurityManager, &references);
    reader.setDeclarationHandler(this);
}

void CFiXmlLimits::attributeDecl(const XMLCh* /*element*/, const XMLCh* /*attribute*/, const XMLCh* /*type*/,
                                 const XMLCh* /*mode*/, const XMLCh* value) {
    refuseIf(dtd.declareAttribute(value));
}

void CFiXmlLimits::elementDecl(const XMLCh* /*name*/, const XMLCh* /*model*/) {}

void CFiXmlLimits::externalEntityDecl(const XMLCh* /*name*/, const XMLCh* /*publicId*/,
                                      const XMLCh* /*systemId*/) {
    // A reference to it fails, and without one nothing is opened.
}

void CFiXmlLimits::internalEntityDecl(const XMLCh* name, const XMLCh* value) {
    refuseIf(CFiDtdLimits::declareEntity(name, value));
}
