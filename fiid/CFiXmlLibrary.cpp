#include "fiid/CFiXmlLibrary.h"

#include <stdexcept>

#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "fiid/CFiXmlMemory.h"
#include "fiid/host_library.h"

using xercesc::XMLPlatformUtils;

namespace {

// The library's own handler ends the process, which is the host's.
class CThrowingPanicHandler : public xercesc::PanicHandler {
public:
    void panic(const PanicReasons reason) override { throw std::runtime_error(getPanicReasonString(reason)); }
};

// The library can be terminated only when it was set up whole. Whatever fails on the way leaves it, in this
// process, to nobody's use.
bool isHalfSetUp = false;

// In the host library only.
bool isHeldForProcess = false;

}  // namespace

// What the library uses as long as anybody holds it.
struct CFiXmlLibrary::SSurroundings {
    CFiXmlMemory memory;
    CThrowingPanicHandler panicHandler;
};

CFiXmlLibrary::CFiXmlLibrary() {
    if (isHeldForProcess) {
        return;  // GCOVR_EXCL_LINE: in the host library only.
    }
    if (isHalfSetUp) {
        throw std::runtime_error("The XML library could not be set up in this process.");
    }
    surroundings = std::make_unique<SSurroundings>();
    try {
        initialize();
        // GCOVR_EXCL_START: nothing is known that makes the set-up end with one.
    } catch (const xercesc::XMLException&) {
        terminate();
        surroundings.reset();
        if constexpr (kInHostLibrary) {
            // No parser of it sets the library up by itself.
            throw std::runtime_error("The XML library could not be set up.");
        }
        // GCOVR_EXCL_STOP
    } catch (...) {
        isHalfSetUp = true;
        static_cast<void>(surroundings.release());
        throw;
    }
    if constexpr (kInHostLibrary) {
        static_cast<void>(surroundings.release());
        isHeldForProcess = true;
    }
}

CFiXmlLibrary::~CFiXmlLibrary() {
    if (surroundings != nullptr) {
        terminate();
    }
}

void CFiXmlLibrary::initialize() {
    surroundings->memory.mayDrawOnReserve(true);
    XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                 &surroundings->panicHandler, &surroundings->memory);
    surroundings->memory.mayDrawOnReserve(false);
}

void CFiXmlLibrary::terminate() {
    surroundings->memory.mayDrawOnReserve(true);
    XMLPlatformUtils::Terminate();
    if (XMLPlatformUtils::fgMemoryManager == &surroundings->memory) {
        // Somebody initialised the library meanwhile and holds it still.
        static_cast<void>(surroundings.release());
    }
}
