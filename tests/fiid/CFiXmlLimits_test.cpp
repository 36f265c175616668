#include "fiid/CFiXmlLimits.h"

#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "tests/support/TemporaryFolder.h"

namespace fi_test {
namespace {

class CEvents : public xercesc::DefaultHandler {
public:
    void startElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* /*qname*/,
                      const xercesc::Attributes& /*attributes*/) override {
        ++started;
    }
    void endElement(const XMLCh* /*uri*/, const XMLCh* /*localname*/, const XMLCh* /*qname*/) override {
        ++ended;
    }
    void characters(const XMLCh* chars, XMLSize_t length) override { text.append(chars, length); }
    void fatalError(const xercesc::SAXParseException& /*report*/) override { ++fatalErrors; }

    int started = 0;
    int ended = 0;
    int fatalErrors = 0;
    std::u16string text;
};

std::string toAscii(const XMLCh* text) {
    const std::u16string_view all = text;
    std::string ascii;
    for (const char16_t unit : all) {
        ascii += static_cast<char>(unit);
    }
    return ascii;
}

class CFiXmlLimitsTest : public testing::Test {
protected:
    CFiXmlLimitsTest() {
        xercesc::XMLPlatformUtils::Initialize();
        limits = std::make_unique<CFiXmlLimits>();
    }
    ~CFiXmlLimitsTest() override {
        limits.reset();
        xercesc::XMLPlatformUtils::Terminate();
    }

    // The limit that a document exceeds, with its place; "malformed" when the reader says so; else empty.
    std::string excessOf(const std::string& document) {
        events = std::make_unique<CEvents>();
        const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
        reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
        reader->setFeature(xercesc::XMLUni::fgSAX2CoreNameSpaces, false);
        limits->applyTo(*reader);
        limits->setHandler(events.get());
        reader->setErrorHandler(events.get());
        try {
            limits->begin(document);
            reader->parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(document.data()),
                                                     document.size(), "document"));
        } catch (const CFiXmlExcess& excess) {
            return std::to_string(excess.getLineNumber()) + ":" + std::to_string(excess.getColumnNumber()) +
                   ": " + toAscii(excess.getMessage());
        }
        return events->fatalErrors == 0 ? "" : "malformed";
    }

    bool isRefused(const std::string& document) { return !excessOf(document).empty(); }

    static std::string repeated(const std::string& text, int count) {
        std::string result;
        for (int i = 0; i < count; ++i) {
            result += text;
        }
        return result;
    }

    bool isDeclarationRefused(const std::string& declarations) {
        return isRefused("<!DOCTYPE a [" + declarations + "]><a/>");
    }

    std::unique_ptr<CEvents> events;
    std::unique_ptr<CFiXmlLimits> limits;
};

TEST_F(CFiXmlLimitsTest, PassOnTheContentOfADocument) {
    EXPECT_EQ(excessOf("<a>b<c/>d</a>"), "");
    EXPECT_EQ(events->started, 2);
    EXPECT_EQ(events->ended, 2);
    EXPECT_EQ(events->text, u"bd");
}

TEST_F(CFiXmlLimitsTest, PassOnNothingOfAnElementThatIsTooMuch) {
    EXPECT_NE(excessOf(repeated("<a>", 257) + repeated("</a>", 257)), "");
    EXPECT_EQ(events->started, 256);
    EXPECT_EQ(events->ended, 0);
}

TEST_F(CFiXmlLimitsTest, CountElementsWithinOneAnother) {
    EXPECT_EQ(excessOf(repeated("<a>", 256) + repeated("</a>", 256)), "");
    EXPECT_EQ(excessOf(repeated("<a>", 257) + repeated("</a>", 257)),
              "1:772: elements nested more than 256 deep");
}

TEST_F(CFiXmlLimitsTest, CountNoElementsSideBySide) {
    EXPECT_EQ(excessOf("<a>" + repeated("<b></b>", 1000) + "</a>"), "");
}

// Elements of so many different names, twice, in one of the first name.
std::string elementsOfNames(int count) {
    std::string elements;
    for (int i = 1; i < count; ++i) {
        elements += "<n" + std::to_string(i) + "/>\n";
    }
    return "<n0>" + elements + elements + "</n0>";
}

TEST_F(CFiXmlLimitsTest, CountDifferentElementNames) {
    EXPECT_EQ(excessOf(elementsOfNames(256)), "");
    EXPECT_EQ(excessOf(elementsOfNames(257)), "256:8: more than 256 different element names");
}

TEST_F(CFiXmlLimitsTest, CountElementNamesThatADtdDeclares) {
    const std::string dtd = "<!DOCTYPE n0 [<!ELEMENT n0 ANY><!ELEMENT n1 ANY>]>";
    EXPECT_EQ(excessOf(dtd + elementsOfNames(256)), "");
    EXPECT_NE(excessOf(dtd + elementsOfNames(257)), "");
}

TEST_F(CFiXmlLimitsTest, CountEachDocumentAnew) {
    EXPECT_EQ(excessOf(elementsOfNames(256)), "");
    EXPECT_EQ(excessOf("<other>" + elementsOfNames(255) + "</other>"), "");
    EXPECT_NE(excessOf(repeated("<a>", 257)), "");
    EXPECT_EQ(excessOf(repeated("<a>", 256) + repeated("</a>", 256)), "");
}

TEST_F(CFiXmlLimitsTest, RefuseALongTagBeforeItIsRead) {
    const std::string start = "<a>\n <b c='";
    EXPECT_EQ(excessOf(start + std::string(8183, 'x') + "'/></a>"), "");
    EXPECT_EQ(excessOf(start + std::string(8184, 'x') + "'/></a>"), "2:2: a tag of more than 8192 bytes");
    EXPECT_EQ(events->started, 0);
}

TEST_F(CFiXmlLimitsTest, AcceptDocumentsWithoutDeclarations) {
    EXPECT_FALSE(isRefused("<a b='c'>text</a>"));
    EXPECT_FALSE(isRefused("<a>" + std::string(100000, 'x') + "</a>"));
    EXPECT_FALSE(isRefused("<a>" + repeated("&amp;&lt;&gt;&quot;&apos;&#65;", 1000) + "</a>"));
}

TEST_F(CFiXmlLimitsTest, AcceptDeclarationsThatNeitherNestNorOpenAnything) {
    EXPECT_FALSE(isDeclarationRefused("<!ELEMENT a ANY>"));
    EXPECT_FALSE(isDeclarationRefused("<!ATTLIST a b CDATA #IMPLIED c CDATA 'd'>"));
    EXPECT_FALSE(isDeclarationRefused("<!NOTATION n SYSTEM 'nothing'>"));
    EXPECT_FALSE(isDeclarationRefused("<!ENTITY e 'value'>"));
    EXPECT_FALSE(isDeclarationRefused("<!ENTITY e ''>"));
    EXPECT_FALSE(isRefused("<!DOCTYPE a [<!ENTITY e 'value'>]><a b='&e;'>&e;</a>"));
}

// `count` attributes of one element.
std::string attributeList(int count) {
    std::string list = "<!ATTLIST a";
    for (int i = 0; i < count; ++i) {
        list += " b" + std::to_string(i) + " CDATA 'c'";
    }
    return list + ">";
}

TEST_F(CFiXmlLimitsTest, CountTheAttributesThatADtdDeclares) {
    EXPECT_FALSE(isDeclarationRefused(attributeList(32)));
    EXPECT_TRUE(isDeclarationRefused(attributeList(33)));
}

TEST_F(CFiXmlLimitsTest, CountTheAttributesOfEachDocumentAnew) {
    EXPECT_FALSE(isDeclarationRefused(attributeList(32)));
    EXPECT_FALSE(isDeclarationRefused(attributeList(32)));
}

TEST_F(CFiXmlLimitsTest, CountDeclarationsOfEveryKind) {
    const std::string others =
        "<!ELEMENT e1 ANY><!ENTITY e3 SYSTEM 's'><!NOTATION e4 SYSTEM 's'><!ENTITY e5 SYSTEM 's' NDATA e4>" +
        attributeList(32);
    std::string entities;
    for (int i = 0; i < 220; ++i) {
        entities += "<!ENTITY f" + std::to_string(i) + " 'x'>";
    }
    EXPECT_FALSE(isDeclarationRefused(others + entities));
    EXPECT_EQ(excessOf("<!DOCTYPE a [" + others + entities + "<!ENTITY last 'x'>]><a/>").substr(7),
              " more than 256 declarations in the DTD");
}

TEST_F(CFiXmlLimitsTest, AcceptAnExternalEntityThatNobodyRefersTo) {
    EXPECT_FALSE(isDeclarationRefused("<!ENTITY e SYSTEM '/dev/zero'>"));
    EXPECT_FALSE(isDeclarationRefused("<!ENTITY % e SYSTEM '/dev/zero'>"));
}

TEST_F(CFiXmlLimitsTest, RefuseWhatIsExternalAlthoughItIsThere) {
    const CTemporaryFolder folder;
    const std::string file = folder.write("file", "<!ELEMENT a ANY>");
    EXPECT_TRUE(isRefused("<!DOCTYPE a SYSTEM '" + file + "'><a/>"));
    EXPECT_TRUE(isRefused("<!DOCTYPE a PUBLIC 'name' '" + file + "'><a/>"));
    EXPECT_TRUE(isRefused("<!DOCTYPE a [<!ENTITY e SYSTEM '" + file + "'>]><a>&e;</a>"));
    EXPECT_TRUE(isDeclarationRefused("<!ENTITY % e SYSTEM '" + file + "'>%e;"));
}

TEST_F(CFiXmlLimitsTest, RefuseMoreReferencesThanTheMost) {
    const std::string declaration = "<!DOCTYPE a [<!ENTITY e 'value'>]>";
    EXPECT_FALSE(isRefused(declaration + "<a>" + repeated("&e;", 100) + "</a>"));
    EXPECT_TRUE(isRefused(declaration + "<a>" + repeated("&e;", 101) + "</a>"));
    EXPECT_FALSE(isRefused(declaration + "<a b='" + repeated("&e;", 100) + "'/>"));
    EXPECT_TRUE(isRefused(declaration + "<a b='" + repeated("&e;", 101) + "'/>"));
}

TEST_F(CFiXmlLimitsTest, RefuseAnEntityThatRefersToAnother) {
    EXPECT_TRUE(isDeclarationRefused("<!ENTITY e 'value'><!ENTITY f '&e;'>"));
    EXPECT_TRUE(isDeclarationRefused("<!ENTITY e 'value'><!ENTITY f 'a&#38;e;'>"));
}

TEST_F(CFiXmlLimitsTest, RefuseAParameterEntity) {
    EXPECT_TRUE(isDeclarationRefused("<!ENTITY % e ''>"));
    EXPECT_TRUE(isDeclarationRefused("<!ENTITY % e '<!ENTITY f \"value\">'>%e;"));
}

TEST_F(CFiXmlLimitsTest, RefuseLongTextsOfADeclaration) {
    EXPECT_FALSE(isDeclarationRefused("<!ENTITY e '" + std::string(256, 'x') + "'>"));
    EXPECT_TRUE(isDeclarationRefused("<!ENTITY e '" + std::string(257, 'x') + "'>"));
    EXPECT_FALSE(isDeclarationRefused("<!ATTLIST a b CDATA '" + std::string(256, 'x') + "'>"));
    EXPECT_TRUE(isDeclarationRefused("<!ATTLIST a b CDATA '" + std::string(257, 'x') + "'>"));
    EXPECT_TRUE(
        isDeclarationRefused("<!ENTITY e '" + std::string(200, 'x') + "'><!ATTLIST a b CDATA '&e;&e;'>"));
}

}  // namespace
}  // namespace fi_test
