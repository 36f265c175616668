#include "fiid/CFiXmlLimits.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "tests/support/TemporaryFolder.h"

namespace fi_test {
namespace {

class CReportCounter : public xercesc::DefaultHandler {
public:
    void fatalError(const xercesc::SAXParseException&) override { ++fatalErrors; }

    int fatalErrors = 0;
};

class CFiXmlLimitsTest : public testing::Test {
protected:
    CFiXmlLimitsTest() { xercesc::XMLPlatformUtils::Initialize(); }
    ~CFiXmlLimitsTest() override { xercesc::XMLPlatformUtils::Terminate(); }

    static bool isRefused(const std::string& document) {
        CFiXmlLimits limits;
        CReportCounter counter;
        const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
        reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
        reader->setFeature(xercesc::XMLUni::fgSAX2CoreNameSpaces, false);
        limits.applyTo(*reader);
        reader->setErrorHandler(&counter);
        reader->parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(document.data()),
                                                 document.size(), "document"));
        EXPECT_LE(counter.fatalErrors, 1);
        return counter.fatalErrors == 1;
    }

    static std::string repeated(const std::string& text, int count) {
        std::string result;
        for (int i = 0; i < count; ++i) {
            result += text;
        }
        return result;
    }

    static bool isDeclarationRefused(const std::string& declarations) {
        return isRefused("<!DOCTYPE a [" + declarations + "]><a/>");
    }
};

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
    EXPECT_FALSE(isDeclarationRefused(attributeList(256)));
    EXPECT_TRUE(isDeclarationRefused(attributeList(257)));
}

TEST_F(CFiXmlLimitsTest, CountTheAttributesOfEachDocumentAnew) {
    CFiXmlLimits limits;
    CReportCounter counter;
    const std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
    limits.applyTo(*reader);
    reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, false);
    reader->setErrorHandler(&counter);
    const std::string document = "<!DOCTYPE a [" + attributeList(256) + "]><a/>";
    for (int i = 0; i < 2; ++i) {
        limits.startDocument();
        reader->parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(document.data()),
                                                 document.size(), "document"));
    }
    EXPECT_EQ(counter.fatalErrors, 0);
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
