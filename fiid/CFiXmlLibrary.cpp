#include "fiid/CFiXmlLibrary.h"

#include <cstddef>
#include <new>
#include <stdexcept>

#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLInitializer.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "fiid/CFiXmlMemory.h"
#include "fiid/host_library.h"

using xercesc::XMLPlatformUtils;

namespace {

// Throws, because the XML library's own handler ends the process, which belongs to the host.
class CThrowingPanicHandler : public xercesc::PanicHandler {
public:
    void panic(const PanicReasons reason) override {
        isWithoutConverter = reason == Panic_NoDefTranscoder;
        throw std::runtime_error(getPanicReasonString(reason));
    }

    // Whether the XML library got no converter for the local code page; it cannot be given one later.
    bool isWithoutConverter = false;
};

struct SHeapDelete {
    void operator()(void* block) const { operator delete(block); }
};

// The libraries that the XML library sets up with itself allocate 55 kB from the heap, in some 1,500 blocks.
// If memory ran out in the middle, some of these blocks could not be freed any more. So this function first
// allocates more than that and frees it at once; it throws std::bad_alloc when the heap has not so much.
void requireFreeHeap() {
    constexpr std::size_t kSize = std::size_t{64} << 10;
    const std::unique_ptr<void, SHeapDelete> first(operator new(kSize));
    const std::unique_ptr<void, SHeapDelete> second(operator new(kSize));
}

// Gives access to the last step of the XML library's set-up, which that library offers to derived classes
// only.
class CStaticData : private xercesc::XMLInitializer {
public:
    using XMLInitializer::initializeStaticData;
};

}  // namespace

// What the XML library uses as long as any part of the process keeps it initialised.
struct CFiXmlLibrary::SSurroundings {
    CFiXmlMemory memory;
    CThrowingPanicHandler panicHandler;
};

// One for the process, because there is one XML library in it. Plain pointers: what they point to may be in
// use until the process ends, and so must not be destroyed before.
struct CFiXmlLibrary::SProcess {
    // Those of a set-up that failed in the middle.
    static inline SSurroundings* halfSetUp = nullptr;
    // Those of a call that ended while another part of the process kept the XML library initialised.
    static inline SSurroundings* left = nullptr;
    // In the host library only: those that it keeps from its first call on.
    static inline SSurroundings* held = nullptr;
};

CFiXmlLibrary::CFiXmlLibrary() {
    if (SProcess::held != nullptr) {
        SProcess::held->memory.takeOver();  // GCOVR_EXCL_LINE: in the host library only.
        return;                             // GCOVR_EXCL_LINE
    }
    freeWhatWasLeft();
    undoHalfSetUp();
    surroundings = std::make_unique<SSurroundings>();
    requireFreeHeap();
    try {
        initialize();
        // GCOVR_EXCL_START: nothing is known that makes the set-up throw one.
    } catch (const xercesc::XMLException&) {
        terminate();
        if constexpr (kInHostLibrary) {
            // The parsers of the host library do not initialise the XML library themselves.
            throw std::runtime_error("The XML library could not be set up.");
        }
        // GCOVR_EXCL_STOP
    } catch (...) {
        SProcess::halfSetUp = surroundings.release();
        throw;
    }
    if constexpr (kInHostLibrary) {
        SProcess::held = surroundings.release();
    }
}

CFiXmlLibrary::~CFiXmlLibrary() {
    if (SProcess::held != nullptr) {
        SProcess::held->memory.leaveToOthers();  // GCOVR_EXCL_LINE: in the host library only.
    } else if (surroundings != nullptr) {
        terminate();
    }
}

void CFiXmlLibrary::freeWhatWasLeft() {
    if (SProcess::left != nullptr && XMLPlatformUtils::fgMemoryManager != &SProcess::left->memory) {
        delete SProcess::left;
        SProcess::left = nullptr;
    }
}

// Completes a set-up that failed in the middle, and terminates it. The XML library can be terminated only
// when it was set up whole. Its last step can be made again from the start. Of those before it, only the
// making of the converter can fail, which takes one block of 288 bytes.
void CFiXmlLibrary::undoHalfSetUp() {
    if (SProcess::halfSetUp == nullptr) {
        return;
    }
    if (SProcess::halfSetUp->panicHandler.isWithoutConverter) {
        throw std::runtime_error("The XML library could not be set up in this process.");
    }
    SProcess::halfSetUp->memory.drawOnReserve(true);
    CStaticData::initializeStaticData();
    surroundings.reset(SProcess::halfSetUp);
    SProcess::halfSetUp = nullptr;
    terminate();
}

void CFiXmlLibrary::initialize() {
    surroundings->memory.drawOnReserve(true);
    XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                 &surroundings->panicHandler, &surroundings->memory);
    surroundings->memory.drawOnReserve(false);
}

void CFiXmlLibrary::terminate() {
    surroundings->memory.drawOnReserve(true);
    XMLPlatformUtils::Terminate();
    if (XMLPlatformUtils::fgMemoryManager == &surroundings->memory) {
        // Another part of the process has initialised the XML library meanwhile and still uses it.
        surroundings->memory.leaveToOthers();
        SProcess::left = surroundings.release();
    }
    surroundings.reset();
}
