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
    for (const char* document : {"", "<a/>", "<?xml version='1.0'?><a encoding='x'/>", "<?xml encoding?>",
                                 "<?xml encoding 'x'?>", "<?xml encoding=?>", "<?xml encoding=x?>",
                                 "<?xml encoding=xyx?>", "<?xml encoding='x?>", " <?xml encoding='x'?>"}) {
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
    EXPECT_TRUE(doctypeEndsWithin("<!DOCTYPE a>", 12));
    EXPECT_FALSE(doctypeEndsWithin("<!DOCTYPE a>", 11));
    EXPECT_TRUE(doctypeEndsWithin("<!DOCTYPE a [<!ENTITY e ']>'><!-- ]> --><?p ]> ?>]>", 100));
    EXPECT_FALSE(doctypeEndsWithin("<!DOCTYPE a [<!ENTITY e ']>", 100));
    EXPECT_FALSE(doctypeEndsWithin("<!DOCTYPE a [<!-- ]>", 100));
    EXPECT_FALSE(doctypeEndsWithin("<!DOCTYPE a [<?p ]>", 100));
}

}  // namespace
