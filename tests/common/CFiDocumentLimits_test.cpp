#include "common/CFiDocumentLimits.h"

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

namespace fi_test {
namespace {

using EExcess = CFiDocumentLimits::EExcess;

EExcess excessOf(const std::string& document) {
    return CFiDocumentLimits().startDocument(document).kind;
}

TEST(CFiDocumentLimits, CountTheBytesOfADocument) {
    std::string document = "<a>" + std::string((std::size_t{128} << 20) - 7, 'x') + "</a>";
    ASSERT_EQ(document.size(), 134217728U);
    EXPECT_EQ(excessOf(document), EExcess::kNone);
    document += '\n';
    EXPECT_EQ(excessOf(document), EExcess::kBytes);
}

// The search looks at blocks of the document, so the tag is tried at every place in a block.
TEST(CFiDocumentLimits, FindALongTagAtEveryPlace) {
    const std::string longest = "<b c='" + std::string(8184, 'x') + "'>";
    ASSERT_EQ(longest.size(), 8192U);
    const std::string tooLong = "<b cd='" + std::string(8184, 'x') + "'>";
    for (std::size_t before = 0; before < 10000; before += 499) {
        const std::string start = "<a>" + std::string(before, 'x');
        EXPECT_EQ(excessOf(start + longest + "</b></a>"), EExcess::kNone) << before;
        const auto excess = CFiDocumentLimits().startDocument(start + tooLong + "</b></a>");
        EXPECT_EQ(excess.kind, EExcess::kTag) << before;
        EXPECT_EQ(excess.offset, start.size());
    }
}

TEST(CFiDocumentLimits, FindALongTagBehindLongTexts) {
    const std::string text(100000, 'x');
    EXPECT_EQ(excessOf("<a>" + text + "<b>" + text + "</b>" + text + "</a>"), EExcess::kNone);
    EXPECT_EQ(
        excessOf("<a>" + text + "<b>" + text + "</b>" + text + "<c" + std::string(8192, ' ') + "/></a>"),
        EExcess::kTag);
}

TEST(CFiDocumentLimits, FindALongTagWhoseValuesHoldItsEnd) {
    std::string tag = "<a";
    for (int i = 0; i < 1000; ++i) {
        tag += " b" + std::to_string(i) + (i % 2 == 0 ? "='\">'" : "=\"'>\"");
    }
    EXPECT_EQ(excessOf(tag + "/>"), EExcess::kTag);
}

TEST(CFiDocumentLimits, FindALongTagWithoutAnEnd) {
    EXPECT_EQ(excessOf("<a " + std::string(8190, 'x')), EExcess::kTag);
    EXPECT_EQ(excessOf("<a b='" + std::string(8190, 'x')), EExcess::kTag);
}

TEST(CFiDocumentLimits, AcceptLongMarkupOfOtherKinds) {
    const std::string text(100000, 'x');
    EXPECT_EQ(excessOf("<!--" + text + "--><?pi " + text + "?><a><![CDATA[" + text + "]]></a >"),
              EExcess::kNone);
    EXPECT_EQ(excessOf("<a></a" + std::string(100000, ' ') + ">"), EExcess::kNone);
    EXPECT_EQ(excessOf("<a><![CDATA[1 < 2, 1 <= 2" + text + "]]></a>"), EExcess::kNone);
}

TEST(CFiDocumentLimits, MeasureTheDtd) {
    const std::string comment = "<!--" + std::string(16000, ']') + "-->";
    const std::string start = "<?xml version='1.0'?>\n<!-- <!DOCTYPE -->\n";
    EXPECT_EQ(excessOf(start + "<!DOCTYPE a [" + comment + "]><a/>"), EExcess::kNone);
    const std::string atMost = "<!DOCTYPE a [" + comment + std::string(16384 - 16022, ' ') + "]>";
    ASSERT_EQ(atMost.size(), 16384U);
    EXPECT_EQ(excessOf(start + atMost + "<a/>"), EExcess::kNone);
    const auto excess = CFiDocumentLimits().startDocument(start + "<!DOCTYPE a  [" + comment +
                                                          std::string(16384 - 16022, ' ') + "]><a/>");
    EXPECT_EQ(excess.kind, EExcess::kDtd);
    EXPECT_EQ(excess.offset, start.size());
}

// What stands in quotation marks, comments and instructions does not end a DTD.
TEST(CFiDocumentLimits, FindTheEndOfTheDtdAsAReaderDoes) {
    const std::string filling(16384, ' ');
    for (const std::string part : {"<!ENTITY a ']>'>", "<!ENTITY a \"]>'\">", "<!-- ' ]> -->", "<?pi ' ]> ?>",
                                   "<!ELEMENT a (b|c)>", "<!-- ]>"}) {
        EXPECT_EQ(excessOf("<!DOCTYPE a [" + part + filling + "]><a/>"), EExcess::kDtd) << part;
    }
    EXPECT_EQ(excessOf("<!DOCTYPE a PUBLIC '>' \"]>\"" + filling + "><a/>"), EExcess::kDtd);
    EXPECT_EQ(excessOf("<!DOCTYPE a [<!-- ' --> <?pi \" ?> <!ENTITY a \"'[\">]><a>" + filling + "</a>"),
              EExcess::kNone);
}

struct SEncoding {
    const char* name;
    bool isRead;
};

TEST(CFiDocumentLimits, AcceptEncodingsWhoseBytesShowTheTags) {
    for (const SEncoding& row : {
             SEncoding{"UTF-8", true},
             SEncoding{"utf-8", true},
             SEncoding{"ISO-8859-15", true},
             SEncoding{"windows-1252", true},
             SEncoding{"Shift_JIS", true},
             SEncoding{"GB18030", true},
             SEncoding{"UTF-16", true},
             SEncoding{"UTF-7", false},
             SEncoding{"IBM1140", false},
             SEncoding{"ISO-2022-JP", false},
             SEncoding{"HZ-GB-2312", false},
             SEncoding{"SCSU", false},
             SEncoding{"UTF", false},
             SEncoding{"GB2312.1980-0", false},
         }) {
        const std::string declaration = std::string("<?xml version='1.0' encoding='") + row.name + "'?><a/>";
        const EExcess expected = row.isRead ? EExcess::kNone : EExcess::kEncoding;
        EXPECT_EQ(excessOf(declaration), expected) << row.name;
        EXPECT_EQ(excessOf("\xEF\xBB\xBF" + declaration), expected) << row.name;
    }
}

TEST(CFiDocumentLimits, FindTheEncodingWhereverTheDeclarationHoldsIt) {
    EXPECT_EQ(excessOf("<?xml version='1.0'" + std::string(5000, ' ') + "encoding = \"UTF-7\"?><a/>"),
              EExcess::kEncoding);
    EXPECT_EQ(excessOf("<?xml version='encoding=\"UTF-8\"' encoding='UTF-7'?><a/>"), EExcess::kEncoding);
    EXPECT_EQ(excessOf("<?xml version='1.0'?><a encoding='UTF-7'/>"), EExcess::kNone);
}

TEST(CFiDocumentLimits, HaveWordsForEachExcess) {
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kNone), "");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kBytes), "more than 134217728 bytes");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kEncoding), "an encoding that is not read");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kTag), "a tag of more than 8192 bytes");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kDtd), "a DTD of more than 16384 bytes");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kDeclarations), "more than 256 declarations in the DTD");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kAttributes),
              "more than 32 attributes declared in the DTD");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kLongDefault),
              "a default of an attribute of more than 256 characters");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kParameterEntity), "a parameter entity");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kNestedEntity), "an entity that refers to another one");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kLongEntity), "an entity of more than 256 characters");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kReferences), "more than 100 references to entities");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kNames), "more than 256 different element names");
    EXPECT_EQ(CFiDocumentLimits::inWords(EExcess::kDepth), "elements nested more than 256 deep");
}

TEST(CFiDocumentLimits, RefuseEbcdic) {
    EXPECT_EQ(excessOf("\x4C\x6F\xA7\x94\x93\x40\x6E"), EExcess::kEncoding);
}

}  // namespace
}  // namespace fi_test
