// The small parts of fi-rotate check.

#include <string>

#include <gtest/gtest.h>

#include "cli/check/findings.h"
#include "cli/check/nearest.h"

namespace {

using fi_rotate::CLines;
using fi_rotate::distance;
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

TEST(FiRotateCheckPlace, ShowsPartOfALongLineAndCutsNoCharacter) {
    // Fifty bytes before the place lie within a character.
    const std::string text = "start \xC3\xA4" + std::string(49, 'b') + "X" + std::string(40, 'e');
    const SSpot spot = CLines(text).at(8 + 49);
    EXPECT_EQ(spot.excerpt, "\xC3\xA4" + std::string(49, 'b') + "X" + std::string(29, 'e'));
    EXPECT_EQ(spot.caret, 51U);
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
        EXPECT_EQ(distance(row.left, row.right, row.limit), row.expected) << row.left << " " << row.right;
        EXPECT_EQ(distance(row.right, row.left, row.limit), row.expected) << row.right << " " << row.left;
    }
}

}  // namespace
