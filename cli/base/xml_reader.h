#pragma once

#include <string>

#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>

// Reads documents as the library does, but opens no other file and limits the references to entities.
namespace fi_rotate {

// Holds the XML library initialised.
class CXmlLibrary {
public:
    CXmlLibrary() { xercesc::XMLPlatformUtils::Initialize(); }
    ~CXmlLibrary() { xercesc::XMLPlatformUtils::Terminate(); }
    CXmlLibrary(const CXmlLibrary&) = delete;
    CXmlLibrary& operator=(const CXmlLibrary&) = delete;
};

std::string toLocalCodePage(const XMLCh* text);

// Called by a handler to stop the reading. The reader then reports a fatal error.
[[noreturn]] void stopReading();

// Reads `document` and reports its contents to `handler`. A CXmlLibrary must live. A reference to another
// file that `handler` does not resolve is not opened and is a fatal error.
void readDocument(const std::string& document, xercesc::DefaultHandler& handler);

}  // namespace fi_rotate
