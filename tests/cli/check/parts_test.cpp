// The small parts of fi-rotate check.

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "cli/base/columns.h"
#include "cli/check/excerpt.h"
#include "cli/check/findings.h"
#include "cli/check/nearest.h"

namespace {

using fi_rotate::CLines;
using fi_rotate::editDistance;
using fi_rotate::showExcerpt;
using fi_rotate::SShownExcerpt;
using fi_rotate::SSpot;

struct SPlaceRow {
    std::size_t offset, line, column;
};

TEST(FiRotateCheckPlace, CountsLinesThatEndInAnyWayAndColumnsInCharacters) {
    const std::string text = "ab\r\nc\rd\n\xC3\xA4x\xFFy";
    const SPlaceRow rows[] = {
        {0, 1, 1}, {1, 1, 2}, {4, 2, 1}, {6, 3, 1}, {8, 4, 1}, {10, 4, 2}, {11, 4, 3}, {13, 4, 5},
    };
    for (const SPlaceRow& row : rows) {
        const SSpot spot = CLines(text).at(row.offset);
        EXPECT_EQ(spot.place.line, row.line) << row.offset;
        EXPECT_EQ(spot.place.column, row.column) << row.offset;
    }
}

TEST(FiRotateCheckPlace, KeepsPartOfALongLineAndCutsNoCharacter) {
    // Four hundred bytes before the place lie within a character, as do four hundred behind its word.
    const std::string before(399, 'b');
    const std::string after(398, 'e');
    const std::string text = "start \xC3\xA4" + before + "Xy;" + after + "\xC3\xA4 end";
    const SSpot spot = CLines(text).at(8 + 399);
    EXPECT_EQ(spot.excerpt, "\xC3\xA4" + before + "Xy;" + after);
    EXPECT_EQ(spot.caret, 401U);
    EXPECT_TRUE(spot.isCutBefore);
    EXPECT_TRUE(spot.isCutAfter);
}

TEST(FiRotateCheckPlace, KeepsAShortLineWhole) {
    const SSpot spot = CLines("first\nsecond\nthird").at(8);
    EXPECT_EQ(spot.excerpt, "second");
    EXPECT_EQ(spot.caret, 2U);
    EXPECT_FALSE(spot.isCutBefore);
    EXPECT_FALSE(spot.isCutAfter);
}

TEST(FiRotateCheckPlace, KnowsWhatBelongsToTheWordThere) {
    const struct {
        const char* text;
        std::size_t offset, length;
    } rows[] = {
        {"encA##lun1;snap 1;snap2", 11, 6},
        {"encA##lun1;snap 1&encB##lun1", 11, 6},
        {"<a><objid>JOB##x</objid>", 10, 6},
        {"<a><TimeStamp b='c'>1</TimeStamp>", 3, 17},
        {"<a>x&ext;y</a>", 4, 5},
        {"<a>x & y</a>", 5, 7},
        {"end", 3, 0},
        {"a;;b", 1, 1},
        {"first\nsecond", 2, 3},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CLines(row.text).at(row.offset).wordLength, row.length) << row.text;
    }
}

struct SExcerptRow {
    const char* text;
    std::size_t offset, width;
    const char* line;
    std::size_t caret;
};

TEST(FiRotateCheckExcerpt, ShowsTheWordAtThePlaceWhateverTheWidth) {
    const SExcerptRow rows[] = {
        // All of it, as much of both sides as fits, the word alone, the start of the word.
        {"encA##lun1;snap1;snap2", 11, 24, "encA##lun1;snap1;snap2", 11},
        {"encA##lun1;snap1;snap2", 11, 15, "…un1;snap1;sna…", 5},
        {"encA##lun1;snap1;snap2", 11, 10, "…1;snap1;…", 3},
        {"encA##lun1;snapshot11;snap2", 11, 12, "…snapshot11…", 1},
        {"encA##lun1;snapshot112233;snap2", 11, 12, "…snapshot11…", 1},
        // At the ends of a line no dots.
        {"encA##lun1;snap1;snap2", 0, 14, "encA##lun1;s…", 0},
        {"encA##lun1;snap1;snap2", 17, 10, "…p1;snap2", 4},
        // No narrower than ten columns.
        {"encA##lun1;snap1;snap2", 11, 0, "…1;snap1;…", 3},
    };
    for (const SExcerptRow& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " in " + std::to_string(row.width));
        const SShownExcerpt shown = showExcerpt(CLines(row.text).at(row.offset), row.width);
        EXPECT_EQ(shown.line, row.line);
        EXPECT_EQ(shown.caret, row.caret);
        EXPECT_LE(fi_rotate::displayWidth(shown.line), std::max<std::size_t>(row.width, 10));
    }
}

TEST(FiRotateCheckExcerpt, CountsColumnsOfWideCharactersAndOfThoseThatAreNotPrintable) {
    const SExcerptRow rows[] = {
        {"\xE6\xBC\xA2\xE6\xBC\xA2;x", 7, 12, "\xE6\xBC\xA2\xE6\xBC\xA2;x", 5},
        {"\x1B[1m;\xFF;abc", 5, 14, "…[1m;\\xFF;abc", 5},
        {"\xE6\xBC\xA2\xE6\xBC\xA2\xE6\xBC\xA2\xE6\xBC\xA2;x;\xE6\xBC\xA2\xE6\xBC\xA2\xE6\xBC\xA2", 13, 10,
         "…\xE6\xBC\xA2;x;\xE6\xBC\xA2…", 4},
    };
    for (const SExcerptRow& row : rows) {
        const SShownExcerpt shown = showExcerpt(CLines(row.text).at(row.offset), row.width);
        EXPECT_EQ(shown.line, row.line);
        EXPECT_EQ(shown.caret, row.caret);
        EXPECT_LE(fi_rotate::displayWidth(shown.line), row.width);
    }
}

TEST(FiRotateCheckExcerpt, SaysThatALineGoesOnBeyondWhatIsKept) {
    const std::string text = std::string(500, 'b') + ";x;" + std::string(500, 'e');
    const SShownExcerpt shown = showExcerpt(CLines(text).at(501), 1000);
    EXPECT_EQ(fi_rotate::displayWidth(shown.line), 100U);
    EXPECT_EQ(shown.line.substr(0, 4), "…b");
    EXPECT_EQ(shown.line.substr(shown.line.size() - 4), "e…");
}

TEST(FiRotateCheckPlace, FindsThePlacesThatTheXmlLibraryTells) {
    // A character of four bytes is two of that library's.
    const CLines lines("a\n\xF0\x9F\x98\x80z\xC3\xA4y\n");
    EXPECT_EQ(lines.offsetOf({1, 1}), 0U);
    EXPECT_EQ(lines.offsetOf({2, 1}), 2U);
    EXPECT_EQ(lines.offsetOf({2, 3}), 6U);
    EXPECT_EQ(lines.offsetOf({2, 4}), 7U);
    EXPECT_EQ(lines.offsetOf({2, 5}), 9U);
}

TEST(FiRotateCheckPlace, TakesTheNearestByteWhenThereIsNoSuchPlace) {
    const CLines lines("a\nbc\n");
    EXPECT_EQ(lines.offsetOf({1, 9}), 2U);
    EXPECT_EQ(lines.offsetOf({7, 1}), 5U);
    EXPECT_EQ(lines.offsetOf({0, 0}), 5U);
}

TEST(FiRotateCheckNearest, CountsWhatMustBeChanged) {
    const struct {
        const char* left;
        const char* right;
        std::size_t limit, expected;
    } rows[] = {
        {"encA##lun1", "encA##lun1", 4, 0},
        {"encA##lun1", "ENCA##LUN1", 4, 0},
        {" encA##lun1\n", "encA##lun1", 4, 0},
        {"encA##lun1", "encA##lun2", 4, 1},
        {"encA##lun1", "encA#lun1", 4, 1},
        {"encA##lun1", "encA##lun12", 4, 1},
        {"kitten", "sitting", 4, 3},
        {"kitten", "sitting", 2, 2},
        {"a", "abcde", 4, 4},
        {"", "", 4, 0},
        {" ", "ab", 4, 2},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(editDistance(row.left, row.right, row.limit), row.expected) << row.left << " " << row.right;
        EXPECT_EQ(editDistance(row.right, row.left, row.limit), row.expected) << row.right << " " << row.left;
    }
}

TEST(FiRotateCheckNearest, TellsNamesThatDifferOnlyInTheirDigits) {
    const struct {
        const char* left;
        const char* right;
        bool expected;
    } rows[] = {
        {"VOL-0011", "VOL-0012", true},  {"VOL-0011", "vol-0012", true},    {"VOL-0011", "VOL-00110", true},
        {"VOL-0011", "VOL-", true},      {"VOL-0011\n", " VOL-0012", true}, {"VOL-0011", "VOL-0011", false},
        {"VOL-0011", "vol-0011", false}, {"VOL-0011", " VOL-0011", false},  {"VOL-0011", "VOL-OO11", false},
        {"VOL-0011", "VOX-0012", false}, {"VOL-0011", "VO0L-011", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fi_rotate::differOnlyInDigits(row.left, row.right), row.expected)
            << row.left << " " << row.right;
        EXPECT_EQ(fi_rotate::differOnlyInDigits(row.right, row.left), row.expected)
            << row.right << " " << row.left;
    }
}

}  // namespace
