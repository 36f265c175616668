#include "cli/base/text.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace {

struct SRow {
    const char* description;
    std::string text;
    std::string asUtf8;
    std::string asPrintable;
};

const SRow kRows[] = {
    {"nothing", "", "", ""},
    {"plain text", "backup-1.xml", "backup-1.xml", "backup-1.xml"},
    {"a backslash stays", "a\\b", "a\\b", "a\\b"},
    {"two bytes", "\xC3\xA4", "\xC3\xA4", "\xC3\xA4"},
    {"three bytes", "\xE6\x97\xA5", "\xE6\x97\xA5", "\xE6\x97\xA5"},
    {"four bytes", "\xF0\x9F\x92\xBE", "\xF0\x9F\x92\xBE", "\xF0\x9F\x92\xBE"},
    {"last code point", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
    {"beyond the last", "\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80", "\\xF4\\x90\\x80\\x80"},
    {"Latin-1", "B\xFCro.xml", "B\\xFCro.xml", "B\\xFCro.xml"},
    {"overlong slash", "\xC0\xAF", "\\xC0\\xAF", "\\xC0\\xAF"},
    {"overlong in three", "\xE0\x9F\xBF", "\\xE0\\x9F\\xBF", "\\xE0\\x9F\\xBF"},
    {"overlong in four", "\xF0\x8F\xBF\xBF", "\\xF0\\x8F\\xBF\\xBF", "\\xF0\\x8F\\xBF\\xBF"},
    {"surrogate", "\xED\xA0\x80", "\\xED\\xA0\\x80", "\\xED\\xA0\\x80"},
    {"cut off", "a\xE6\x97", "a\\xE6\\x97", "a\\xE6\\x97"},
    {"stray continuation", "\x80z", "\\x80z", "\\x80z"},
    {"broken in the third byte", "\xE6\x97z", "\\xE6\\x97z", "\\xE6\\x97z"},
    {"line break and tab", "a\n\tb", "a\n\tb", "a\\x0A\\x09b"},
    {"escape sequence", "\x1B[31m", "\x1B[31m", "\\x1B[31m"},
    {"delete", "\x7F", "\x7F", "\\x7F"},
    {"control of the second set", "\xC2\x85", "\xC2\x85", "\\xC2\\x85"},
    {"NUL byte", std::string("a\0b", 3), std::string("a\0b", 3), "a\\x00b"},
};

TEST(FiRotatePrintable, KeepsUtf8AndShowsEveryOtherByteInHexadecimal) {
    for (const SRow& row : kRows) {
        EXPECT_EQ(fi_rotate::asUtf8(row.text), row.asUtf8) << row.description;
    }
}

TEST(FiRotatePrintable, ShowsControlCharactersInHexadecimalOnTerminals) {
    for (const SRow& row : kRows) {
        EXPECT_EQ(fi_rotate::asPrintable(row.text), row.asPrintable) << row.description;
    }
}

TEST(FiRotateLowerCase, ChangesTheCapitalLettersOfAsciiAndNothingElse) {
    const std::string bytes = "@AMZ[`amz{09 \xC3\x84\xDF";
    std::string small = bytes;
    std::transform(small.begin(), small.end(), small.begin(), fi_rotate::lowerCase<char>);
    EXPECT_EQ(small, "@amz[`amz{09 \xC3\x84\xDF");
    EXPECT_EQ(fi_rotate::lowerCase(u'Z'), u'z');
    EXPECT_EQ(fi_rotate::lowerCase(u'\u00C4'), u'\u00C4');
    // Its lower byte is that of a capital A.
    EXPECT_EQ(fi_rotate::lowerCase(u'\u0141'), u'\u0141');
}

}  // namespace
