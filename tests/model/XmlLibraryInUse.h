#pragma once

#include <xercesc/util/PlatformUtils.hpp>

namespace fi_model {

// A host that keeps the XML library set up. Otherwise its set-up would take most of the time of each call.
class CXmlLibraryInUse {
public:
    CXmlLibraryInUse() { xercesc::XMLPlatformUtils::Initialize(); }
    ~CXmlLibraryInUse() { xercesc::XMLPlatformUtils::Terminate(); }
    CXmlLibraryInUse(const CXmlLibraryInUse&) = delete;
    CXmlLibraryInUse& operator=(const CXmlLibraryInUse&) = delete;
};

}  // namespace fi_model
