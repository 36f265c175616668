#pragma once

#include <string>

#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>

// Reads documents as the library does, but opens nothing and lets no document grow.
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

// For a handler that will not have the document read on: the reader makes a fatal error of it.
[[noreturn]] void refuseDocument();

// Reports what stands in `document` to `handler` while a CXmlLibrary lives. What `handler` does not resolve
// itself stays unopened and is a fatal error.
void readDocument(const std::string& document, xercesc::DefaultHandler& handler);

}  // namespace fi_rotate
