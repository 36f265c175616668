#include "fiid/local_code_page.h"

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <xercesc/util/XMLString.hpp>

#include "fiid/CFiXmlLibrary.h"
#include "tests/support/TemporaryFolder.h"

namespace fi_test {
namespace {

std::string transcoded(const std::u16string& text) {
    char* buffer = xercesc::XMLString::transcode(text.c_str());
    std::string result = buffer;
    xercesc::XMLString::release(&buffer);
    return result;
}

std::string converted(const std::u16string& text) {
    std::string result = "what was there before";
    EXPECT_TRUE(toLocalCodePage(text.c_str(), result));
    return result;
}

std::vector<std::u16string> texts() {
    std::vector<std::u16string> result{u"",       u"\u00e4", u"a\u00e4", u"\u00e4a",     u"\u65e5\u672c",
                                       u"\u0080", u"\u00ff", u"\u0100",  u"\xD83D\xDCBE"};
    std::u16string all;
    for (char16_t unit = 1; unit < 0x80; ++unit) {
        result.emplace_back(1, unit);
        all += unit;
    }
    result.push_back(all);
    for (const std::size_t length : {254U, 255U, 256U, 257U, 511U, 100000U}) {
        result.emplace_back(length, u'x');
        result.push_back(std::u16string(length, u'x') + u'\u00e4');
        result.push_back(u'\u00e4' + std::u16string(length, u'x'));
    }
    return result;
}

void expectAgreement() {
    const CFiXmlLibrary library;
    for (const std::u16string& text : texts()) {
        EXPECT_EQ(converted(text), transcoded(text)) << text.size() << " units";
    }
}

// Sets the locale that the XML library finds, and puts everything back.
class CLocale {
public:
    explicit CLocale(const std::string& name) : set(std::setlocale(LC_ALL, name.c_str()) != nullptr) {
        setenv("LC_ALL", name.c_str(), 1);
    }
    ~CLocale() {
        unsetenv("LC_ALL");
        std::setlocale(LC_ALL, "C");
    }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

    const bool set;
};

TEST(LocalCodePage, AgreesWithTheTranscoderInTheCLocale) {
    const CLocale locale("C");
    ASSERT_TRUE(locale.set);
    expectAgreement();
}

TEST(LocalCodePage, AgreesWithTheTranscoderInAUtf8Locale) {
    const CLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.set);
    expectAgreement();
}

TEST(LocalCodePage, AgreesWithTheTranscoderInALatin1Locale) {
    const CTemporaryFolder folder;
    const std::string command = "localedef -i de_DE -f ISO-8859-1 " + folder.path("de_DE.ISO-8859-1");
    ASSERT_EQ(std::system(command.c_str()), 0);
    setenv("LOCPATH", folder.path("").c_str(), 1);
    {
        const CLocale locale("de_DE.ISO-8859-1");
        ASSERT_TRUE(locale.set);
        expectAgreement();
    }
    unsetenv("LOCPATH");
}

TEST(LocalCodePage, TakesATextToItsNul) {
    const CFiXmlLibrary library;
    const char16_t text[] = {u'a', u'b', 0, u'c', 0};
    std::string result;
    EXPECT_TRUE(toLocalCodePage(text, result));
    EXPECT_EQ(result, "ab");
}

}  // namespace
}  // namespace fi_test
