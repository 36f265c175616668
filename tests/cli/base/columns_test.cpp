#include "cli/base/columns.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using fi_rotate::cutTo;
using fi_rotate::displayWidth;
using fi_rotate::toRow;
using fi_rotate::toTable;

TEST(FiRotateColumns, CutsInTheMiddleSinceNamesDifferAtTheEnd) {
    EXPECT_EQ(cutTo("abcdefgh", 8), "abcdefgh");
    EXPECT_EQ(cutTo("abcdefgh", 7), "abc…fgh");
    EXPECT_EQ(cutTo("abcdefgh", 6), "ab…fgh");
    EXPECT_EQ(cutTo("abcdefgh", 2), "…h");
    EXPECT_EQ(cutTo("abcdefgh", 1), "…");
    EXPECT_EQ(cutTo("", 1), "");
}

TEST(FiRotateColumns, CutsBetweenCharactersNotWithinThem) {
    EXPECT_EQ(cutTo("äöüäöü", 4), "ä…öü");
    // Each is two columns wide.
    EXPECT_EQ(cutTo("漢字漢字", 5), "漢…字");
    EXPECT_EQ(cutTo("漢字漢字", 4), "…字");
    EXPECT_EQ(displayWidth("漢…字"), 5);
}

TEST(FiRotateColumns, CutTheWidestCellsWhereARowIsTooLong) {
    const std::vector<fi_rotate::Row> rows{toRow({"name", "other"}),
                                           toRow({"abcdefghijklmnop", "0123456789"})};
    // Two columns in front of each.
    EXPECT_EQ(toTable(rows, 30, false),
              "  name              other\n"
              "  abcdefghijklmnop  0123456789\n");
    EXPECT_EQ(toTable(rows, 26, false),
              "  name          other\n"
              "  abcde…klmnop  0123456789\n");
    EXPECT_EQ(toTable(rows, 1, false),
              "  name      other\n"
              "  abc…mnop  012…6789\n");
}

}  // namespace
