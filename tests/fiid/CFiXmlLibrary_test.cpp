#include "fiid/CFiXmlLibrary.h"

#include <memory>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

namespace {

using xercesc::XMLPlatformUtils;

bool isInitialized() {
    return XMLPlatformUtils::fgMemoryManager != nullptr;
}

class CElementCounter : public xercesc::DefaultHandler {
public:
    void startElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* /*qname*/,
                      const xercesc::Attributes& /*attributes*/) override {
        ++elements;
    }
    int elements = 0;
};

// Uses the XML library as a host might do in a thread of its own.
void readManyDocuments() {
    constexpr std::string_view kDocument = "<a><b c='d'>e</b><f/></a>";
    for (int i = 0; i < 200; ++i) {
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(kDocument.data()),
                                                kDocument.size(), "document");
        const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
        CElementCounter counter;
        reader->setContentHandler(&counter);
        reader->parse(source);
        EXPECT_EQ(counter.elements, 3);
    }
}

TEST(CFiXmlLibrary, IsHeldForAScope) {
    {
        const CFiXmlLibrary held;
        EXPECT_TRUE(isInitialized());
    }
    EXPECT_FALSE(isInitialized());
}

TEST(CFiXmlLibrary, IsHeldUntilTheLastScopeEnds) {
    std::optional<CFiXmlLibrary> first(std::in_place);
    {
        const CFiXmlLibrary second;
        EXPECT_TRUE(isInitialized());
    }
    EXPECT_TRUE(isInitialized());
    first.reset();
    EXPECT_FALSE(isInitialized());
}

TEST(CFiXmlLibrary, UsesTheMemoryOfAHostThatHoldsItFirst) {
    XMLPlatformUtils::Initialize();
    const auto* const memory = XMLPlatformUtils::fgMemoryManager;
    {
        const CFiXmlLibrary held;
        EXPECT_EQ(XMLPlatformUtils::fgMemoryManager, memory);
    }
    EXPECT_EQ(XMLPlatformUtils::fgMemoryManager, memory);
    XMLPlatformUtils::Terminate();
    EXPECT_FALSE(isInitialized());
}

TEST(CFiXmlLibrary, StaysUsableForAHostThatHoldsItLonger) {
    {
        const CFiXmlLibrary held;
        XMLPlatformUtils::Initialize();
    }
    char* text = xercesc::XMLString::transcode(u"text");
    EXPECT_STREQ(text, "text");
    xercesc::XMLString::release(&text);
    XMLPlatformUtils::Terminate();
    EXPECT_FALSE(isInitialized());
    // The memory that was left to the host is freed with this.
    const CFiXmlLibrary held;
}

TEST(CFiXmlLibrary, StaysUsableForAllThreadsOfAHostThatHoldsItLonger) {
    std::vector<std::thread> threads;
    {
        const CFiXmlLibrary held;
        XMLPlatformUtils::Initialize();
        // Used here while both hold it, and below when only the host does.
        threads.emplace_back(readManyDocuments);
        readManyDocuments();
    }
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back(readManyDocuments);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    XMLPlatformUtils::Terminate();
    EXPECT_FALSE(isInitialized());
    // Frees what it left.
    const CFiXmlLibrary held;
}

}  // namespace
