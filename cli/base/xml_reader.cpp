#include "cli/base/xml_reader.h"

#include <memory>
#include <new>
#include <stdexcept>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "common/CFiDocumentLimits.h"

namespace fi_rotate {
namespace {

using xercesc::XMLString;
using xercesc::XMLUni;

struct STranscodedRelease {
    void operator()(char* text) const { XMLString::release(&text); }
};

}  // namespace

std::string toLocalCodePage(const XMLCh* text) {
    const std::unique_ptr<char, STranscodedRelease> local(XMLString::transcode(text));
    return local == nullptr ? std::string() : std::string(local.get());
}

void stopReading() {
    // The code only has to be one of the XML library's: who stops the reading has noted why.
    ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_CouldNotOpenExtEntity,
                       xercesc::XMLPlatformUtils::fgMemoryManager);
}

void readDocument(const std::string& document, xercesc::DefaultHandler& handler) {
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()),
                                            document.size(), "fi-rotate");
    xercesc::SecurityManager references;
    references.setEntityExpansionLimit(CFiDocumentLimits::kMostReferences);
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
    reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
    reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
    reader->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    reader->setProperty(XMLUni::fgXercesSecurityManager, &references);
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->setLexicalHandler(&handler);
    reader->setDeclarationHandler(&handler);
    reader->setDTDHandler(&handler);
    reader->setEntityResolver(&handler);
    try {
        reader->parse(source);
        // None of these is a std::exception.
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    } catch (const xercesc::XMLException& error) {
        throw std::runtime_error(toLocalCodePage(error.getMessage()));
    }
}

}  // namespace fi_rotate
