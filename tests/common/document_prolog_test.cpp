#include "common/document_prolog.h"

#include <optional>

#include <gtest/gtest.h>

namespace {

TEST(DocumentProlog, DeclaresAnEncodingInEitherQuotationMarks) {
    EXPECT_EQ(declaredEncoding("<?xml version='1.0' encoding='UTF-7'?><a/>"), "UTF-7");
    EXPECT_EQ(declaredEncoding("<?xml version=\"1.0\" encoding = \"UTF-8\" ?><a/>"), "UTF-8");
    EXPECT_EQ(declaredEncoding("\xEF\xBB\xBF<?xml encoding='a'?>"), "a");
}

TEST(DocumentProlog, DeclaresNoEncodingThatHasNoValue) {
    for (const char* document :
         {"", "<a/>", "<?xml version='1.0'?><a encoding='x'/>", "<?xml encoding?>", "<?xml encoding 'x'?>",
          "<?xml encoding=?>", "<?xml encoding=x?>", "<?xml encoding='x?>", " <?xml encoding='x'?>"}) {
        EXPECT_EQ(declaredEncoding(document), std::nullopt) << document;
    }
}

TEST(DocumentProlog, TellsASecondEncoding) {
    EXPECT_TRUE(hasAtMostOneEncoding("<a/>"));
    EXPECT_TRUE(hasAtMostOneEncoding("<?xml encoding='x'?>"));
    EXPECT_FALSE(hasAtMostOneEncoding("<?xml encoding='x' encoding='y'?>"));
}

TEST(DocumentProlog, FindsTheDoctypeBehindWhatMayStandBeforeIt) {
    EXPECT_EQ(doctypeIn("<!DOCTYPE a><a/>"), 0U);
    EXPECT_EQ(doctypeIn("\xEF\xBB\xBF<?xml?> \t\r\n<!-- <!DOCTYPE --><!DOCTYPE a>"), 32U);
    EXPECT_EQ(doctypeIn("<a/><!DOCTYPE a>"), std::nullopt);
    EXPECT_EQ(doctypeIn("<!-- <!DOCTYPE a>"), std::nullopt);
}

TEST(DocumentProlog, FindsTheEndOfTheDoctype) {
    EXPECT_TRUE(endsWithin(12, "<!DOCTYPE a>"));
    EXPECT_FALSE(endsWithin(11, "<!DOCTYPE a>"));
    EXPECT_TRUE(endsWithin(100, "<!DOCTYPE a [<!ENTITY e ']>'><!-- ]> --><?p ]> ?>]>"));
    EXPECT_FALSE(endsWithin(100, "<!DOCTYPE a [<!ENTITY e ']>"));
    EXPECT_FALSE(endsWithin(100, "<!DOCTYPE a [<!-- ]>"));
    EXPECT_FALSE(endsWithin(100, "<!DOCTYPE a [<?p ]>"));
}

}  // namespace
