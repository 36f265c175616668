#include "common/CCmnStringTool.h"

#include <string>

#include <gtest/gtest.h>

namespace {

struct SRow {
    std::string input;
    std::string expected;
};

template <std::size_t count>
void expectConversions(const SRow (&rows)[count]) {
    for (const SRow& row : rows) {
        EXPECT_EQ(CCmnStringTool::convertFromXmlSpecialCharacters(row.input), row.expected) << row.input;
    }
}

TEST(CCmnStringTool, ReplacesTheFiveEscapes) {
    expectConversions({
        {"a&lt;b&gt;c", "a<b>c"},
        {"&quot;x&quot;", "\"x\""},
        {"it&#39;s", "it's"},
        {"a&amp;b", "a&b"},
        {"&lt;&gt;&quot;&#39;&amp;", "<>\"'&"},
        {"&lt;&lt;&lt;", "<<<"},
        {"&gt;middle&gt;", ">middle>"},
    });
}

TEST(CCmnStringTool, DecodesADoublyEscapedTextOnce) {
    expectConversions({
        {"&amp;quot;", "&quot;"},
        {"&amp;lt;", "&lt;"},
        {"&amp;amp;", "&amp;"},
        {"&amp;#39;", "&#39;"},
        {"&amp;gt;", "&gt;"},
    });
}

TEST(CCmnStringTool, LeavesEveryOtherReferenceAlone) {
    expectConversions({
        {"&apos;", "&apos;"},
        {"&#34;", "&#34;"},
        {"&#x27;", "&#x27;"},
        {"&#039;", "&#039;"},
        {"&LT;", "&LT;"},
        {"&nbsp;", "&nbsp;"},
    });
}

TEST(CCmnStringTool, LeavesUnterminatedAndBrokenSequencesAlone) {
    expectConversions({
        {"&", "&"},
        {"&amp", "&amp"},
        {"&lt&gt", "&lt&gt"},
        {"& lt;", "& lt;"},
        {"a&b;c", "a&b;c"},
    });
}

TEST(CCmnStringTool, FindsAnEscapeRightBehindAnAmpersand) {
    expectConversions({
        {"&&amp;;", "&&;"},
        {"&&lt;", "&<"},
    });
}

// A later pass works on what an earlier one made.
TEST(CCmnStringTool, LetsAPassSeeWhatThePassBeforeItMade) {
    expectConversions({
        {"&am&#39;p;", "&am'p;"},
        {"&a&gt;mp;", "&a>mp;"},
        {"&amp;amp;amp;", "&amp;amp;"},
    });
}

TEST(CCmnStringTool, ReturnsTheEmptyStringForTheEmptyString) {
    expectConversions({{"", ""}});
}

TEST(CCmnStringTool, CutsAtAnEmbeddedNulByte) {
    expectConversions({
        {std::string("abc\0def", 7), "abc"},
        {std::string("a&lt;\0&gt;", 10), "a<"},
        {std::string("\0x", 2), ""},
    });
}

TEST(CCmnStringTool, ReturnsAsManyBytesAsAreLeft) {
    const std::string result = CCmnStringTool::convertFromXmlSpecialCharacters("a&amp;b&lt;c");
    EXPECT_EQ(result.size(), 5U);
}

TEST(CCmnStringTool, LeavesItsInputAlone) {
    const std::string input = "a&lt;b";
    CCmnStringTool::convertFromXmlSpecialCharacters(input);
    EXPECT_EQ(input, "a&lt;b");
}

}  // namespace
