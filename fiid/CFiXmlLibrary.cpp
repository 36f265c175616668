#include "fiid/CFiXmlLibrary.h"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

using xercesc::XMLPlatformUtils;

CFiXmlLibrary::CFiXmlLibrary() {
    try {
        XMLPlatformUtils::Initialize();
    } catch (const xercesc::XMLException&) {
        // Counted all the same, so the destructor's call is due.
    }
}

CFiXmlLibrary::~CFiXmlLibrary() {
    XMLPlatformUtils::Terminate();
}
