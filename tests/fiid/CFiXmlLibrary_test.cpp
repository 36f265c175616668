#include "fiid/CFiXmlLibrary.h"

#include <optional>

#include <gtest/gtest.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

namespace {

using xercesc::XMLPlatformUtils;

bool isInitialized() {
    return XMLPlatformUtils::fgMemoryManager != nullptr;
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

#ifndef __SANITIZE_ADDRESS__
// Its memory must then outlive the scope, and nobody is left to free it: a leak checker says so.
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
}
#endif

}  // namespace
