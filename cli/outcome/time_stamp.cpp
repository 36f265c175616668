#include "cli/outcome/time_stamp.h"

#include <cstddef>
#include <string>

#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/XMLString.hpp>

#include "cli/base/file.h"
#include "cli/base/xml_reader.h"

namespace fi_rotate {
namespace {

using xercesc::XMLString;

class CTimeStampHandler : public xercesc::DefaultHandler {
public:
    void characters(const XMLCh* chars, XMLSize_t /*length*/) override { text = toLocalCodePage(chars); }

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

    void attributeDecl(const XMLCh* /*element*/, const XMLCh* /*attribute*/, const XMLCh* /*type*/,
                       const XMLCh* /*mode*/, const XMLCh* value) override {
        ++attributes;
        if (attributes > kMostAttributes || XMLString::stringLen(value) > kLongestEntity) {
            refuseDocument();
        }
    }

    void internalEntityDecl(const XMLCh* name, const XMLCh* value) override {
        const bool isParameterEntity = name[0] == u'%';
        const bool refersToEntity = XMLString::indexOf(value, u'&') >= 0;
        if (isParameterEntity || refersToEntity || XMLString::stringLen(value) > kLongestEntity) {
            refuseDocument();
        }
    }

    // What was read before the fault counts, as it does for the library.
    void fatalError(const xercesc::SAXParseException& /*report*/) override {}

    std::string timeStamp;

private:
    std::string text;
    long depth = 0;
    bool hasRoot = false;
    std::size_t attributes = 0;
};

std::string readTimeStamp(const std::string& file) {
    CTimeStampHandler handler;
    readDocument(readFile(file).value_or(""), handler);
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
