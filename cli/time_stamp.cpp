#include "cli/time_stamp.h"

#include <memory>
#include <string>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "cli/file.h"

namespace fi_rotate {
namespace {

using xercesc::XMLPlatformUtils;
using xercesc::XMLString;
using xercesc::XMLUni;

class CXmlLibrary {
public:
    CXmlLibrary() { XMLPlatformUtils::Initialize(); }
    ~CXmlLibrary() { XMLPlatformUtils::Terminate(); }
    CXmlLibrary(const CXmlLibrary&) = delete;
    CXmlLibrary& operator=(const CXmlLibrary&) = delete;
};

struct STranscodedRelease {
    void operator()(char* text) const { XMLString::release(&text); }
};

std::string toLocalCodePage(const XMLCh* text) {
    const std::unique_ptr<char, STranscodedRelease> local(XMLString::transcode(text));
    return local == nullptr ? std::string() : std::string(local.get());
}

class CTimeStampHandler : public xercesc::DefaultHandler {
public:
    void characters(const XMLCh* chars, XMLSize_t /*length*/) override {
        text = toLocalCodePage(chars);
    }

    void startElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* qname,
                      const xercesc::Attributes& /*attributes*/) override {
        if (XMLString::equals(qname, u"Node")) {
            if (depth == 0) {
                hasRoot = true;
                timeStamp.clear();
            }
            ++depth;
        }
    }

    void endElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* qname) override {
        if (XMLString::equals(qname, u"Node")) {
            --depth;
        } else if (hasRoot && XMLString::equals(qname, u"timeStamp")) {
            timeStamp = text;
        }
    }

    // What was read before the fault counts, as it does for the library.
    void fatalError(const xercesc::SAXParseException& /*report*/) override {}

    std::string timeStamp;

private:
    std::string text;
    long depth = 0;
    bool hasRoot = false;
};

constexpr XMLSize_t kMostReferences = 100;

std::string readTimeStamp(const std::string& file) {
    const std::string document = readFile(file).value_or("");
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()),
                                            document.size(), "fi-rotate");
    CTimeStampHandler handler;
    xercesc::SecurityManager references;
    references.setEntityExpansionLimit(kMostReferences);
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(
        xercesc::XMLReaderFactory::createXMLReader());
    reader->setFeature(XMLUni::fgSAX2CoreValidation, false);
    reader->setFeature(XMLUni::fgSAX2CoreNameSpaces, false);
    // A document that is only looked at opens nothing and does not grow.
    reader->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    reader->setProperty(XMLUni::fgXercesSecurityManager, &references);
    reader->setContentHandler(&handler);
    reader->setErrorHandler(&handler);
    reader->parse(source);
    return handler.timeStamp;
}

}  // namespace

void readTimeStamps(std::vector<SBackup>& backups) {
    const CXmlLibrary library;
    for (SBackup& backup : backups) {
        if (backup.loaded) {
            backup.timeStamp = readTimeStamp(backup.file);
        }
    }
}

}  // namespace fi_rotate
